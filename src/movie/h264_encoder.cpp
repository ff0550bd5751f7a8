#include "movie/h264_encoder.h"

#include "movie/movie_failure.h"

#include <algorithm>
#include <cmath>

namespace brisklet {

namespace {

constexpr int lengthBytes = 4;

constexpr int bt709 = 1;

// Why "veryfast". On lock screens of 1170 x 2532 with the quantiser that the movies use, a key frame took 37
// ms of processor time (with "fast" 75, with "ultrafast" 9) and a picture with a new card 11 ms (19; 5), and
// the pictures of a movie came to 2.2 MB (2.1; 2.8), all of the same quality. The slower presets spend their
// time on motion and on trellis quantisation, which are worth little where little moves and the quantiser is
// fine; the fastest does without CABAC. Key frames are predicted in blocks of 16 x 16 alone: that takes them
// from 37 to 21 ms for 8 % more bytes.
//
// Tuned for PSNR: no psychovisual weighting, which adds grain, and the same quantiser for flat and busy
// parts, so that gradients, whose bands show first, are as fine as the rest.
x264_param_t parametersFor(const H264Settings& settings) {
  x264_param_t parameters;
  require(x264_param_default_preset(&parameters, "veryfast", "psnr") == 0, "choosing the encoder's preset");
  parameters.i_log_level = X264_LOG_NONE;
  parameters.b_cpu_independent = 1;
  parameters.i_threads = 1;
  parameters.i_sync_lookahead = 0;

  parameters.i_width = settings.width;
  parameters.i_height = settings.height;
  parameters.i_csp = X264_CSP_NV12;
  parameters.i_bitdepth = 8;
  parameters.i_fps_num = static_cast<uint32_t>(settings.framesPerSecond);
  parameters.i_fps_den = 1;
  parameters.i_timebase_num = 1;
  parameters.i_timebase_den = static_cast<uint32_t>(settings.framesPerSecond);
  parameters.b_vfr_input = 0;  // otherwise a frame of delay
  parameters.vui.i_sar_width = parameters.vui.i_sar_height = 1;
  parameters.vui.b_fullrange = 0;
  parameters.vui.i_colorprim = parameters.vui.i_transfer = parameters.vui.i_colmatrix = bt709;

  // Key frames come where they are asked for. Without B pictures the order of output is that of decoding.
  parameters.i_keyint_max = X264_KEYINT_MAX_INFINITE;
  parameters.i_scenecut_threshold = 0;
  parameters.i_bframe = 0;
  parameters.i_frame_reference = 1;
  parameters.rc.b_mb_tree = 0;
  parameters.rc.i_lookahead = 0;
  parameters.rc.i_rc_method = X264_RC_CQP;
  // Each picture names its quantiser; x264 clips it to the range between those of its picture types, which it
  // lays around one by factors of 10 at most: that is 19 steps.
  constexpr int middle = 23;
  const auto factor = [](int steps) { return std::exp2(static_cast<float>(steps) / 6); };
  parameters.rc.i_qp_constant = middle;
  parameters.rc.f_ip_factor = factor(middle - H264Encoder::finestQuantiser);
  parameters.rc.f_pb_factor = factor(H264Encoder::coarsestQuantiser - middle);
  parameters.analyse.intra = 0;
  // Cards move up and down as wholes: smaller blocks and finer motion take a quarter more of the encoder's
  // time in movies in motion, and save 5 % of the bytes of plain ones.
  parameters.analyse.inter = 0;
  parameters.analyse.i_subpel_refine = 0;
  parameters.analyse.i_me_method = X264_ME_DIA;
  // Finer, so that the dither of the chroma survives. With both, a mean over 8 x 8 samples is off by 0.17
  // levels or less in 95 of 100 places (0.49 without either), for key frames a third to a half larger.
  parameters.analyse.i_chroma_qp_offset = -8;
  // Macroblocks can be told unchanged only where prediction is not weighted.
  parameters.analyse.i_weighted_pred = X264_WEIGHTP_NONE;
  parameters.analyse.b_mb_info = 1;
  // Below a quantiser of 16 the filter changes nothing, but beside changes it would make x264 doubt what it
  // is told to be unchanged.
  parameters.b_deblocking_filter = 0;
  parameters.b_full_recon = 1;

  parameters.b_repeat_headers = 0;  // the only ones stand in the container
  parameters.b_annexb = 0;
  require(x264_param_apply_profile(&parameters, "high") == 0, "choosing the H.264 profile");
  return parameters;
}

bool isSlice(const x264_nal_t& nal) {
  return nal.i_type == NAL_SLICE || nal.i_type == NAL_SLICE_IDR;
}

}  // namespace

H264Encoder::H264Encoder(const H264Settings& settings) : width_(settings.width), height_(settings.height) {
  x264_param_t parameters = parametersFor(settings);
  encoder_.reset(checked(x264_encoder_open(&parameters), "the video encoder"));
  x264_nal_t* nals = nullptr;
  int count = 0;
  require(x264_encoder_headers(encoder_.get(), &nals, &count) >= 0, "making the video's headers");
  for (const x264_nal_t& nal : std::span(nals, static_cast<size_t>(count))) {
    const std::vector<uint8_t> unit(nal.p_payload + lengthBytes, nal.p_payload + nal.i_payload);
    if (nal.i_type == NAL_SPS) sps_ = unit;
    if (nal.i_type == NAL_PPS) pps_ = unit;
  }
}

std::span<const uint8_t> H264Encoder::encode(const YuvPicture& picture, PictureCoding coding, int quantiser,
                                             std::span<const uint8_t> unchanged) {
  x264_picture_t in;
  x264_picture_init(&in);
  in.i_type = coding == PictureCoding::Idr ? X264_TYPE_IDR : X264_TYPE_P;
  in.i_qpplus1 = quantiser + 1;
  in.i_pts = picturesIn_++;
  in.img.i_csp = X264_CSP_NV12;
  in.img.i_plane = 2;
  // x264 copies from these planes and never writes to them.
  in.img.plane[0] = const_cast<uint8_t*>(picture.luma());
  in.img.plane[1] = const_cast<uint8_t*>(picture.chroma());
  in.img.i_stride[0] = in.img.i_stride[1] = static_cast<int>(picture.stride());
  if (!unchanged.empty() && coding == PictureCoding::Predicted) {
    // x264 keeps the array for as long as it needs, which is beyond this call.
    in.prop.mb_info = new uint8_t[unchanged.size()];
    in.prop.mb_info_free = [](void* info) { delete[] static_cast<uint8_t*>(info); };
    std::transform(unchanged.begin(), unchanged.end(), in.prop.mb_info,
                   [](uint8_t is) { return static_cast<uint8_t>(is != 0 ? X264_MBINFO_CONSTANT : 0); });
  }

  x264_nal_t* nals = nullptr;
  int count = 0;
  require(x264_encoder_encode(encoder_.get(), &nals, &count, &in, &out_) >= 0, "encoding a picture");
  slices_.clear();
  for (const x264_nal_t& nal : std::span(nals, static_cast<size_t>(count)))
    if (isSlice(nal)) slices_.insert(slices_.end(), nal.p_payload, nal.p_payload + nal.i_payload);
  require(!slices_.empty(), "getting a picture out of the video encoder");
  return slices_;
}

std::vector<uint8_t> H264Encoder::reconstruction() const {
  std::vector<uint8_t> rows;
  rows.reserve(static_cast<size_t>(width_) * static_cast<size_t>(height_) * 3 / 2);
  for (const int plane : {0, 1})
    for (int row = 0; row < (plane == 0 ? height_ : height_ / 2); ++row) {
      const uint8_t* begin = out_.img.plane[plane] + static_cast<ptrdiff_t>(row) * out_.img.i_stride[plane];
      rows.insert(rows.end(), begin, begin + width_);
    }
  return rows;
}

}  // namespace brisklet
