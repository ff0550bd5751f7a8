#include "platform/h264_encoder.h"

#include "platform/movie_failure.h"

namespace brisklet {

namespace {

constexpr int lengthBytes = 4;

constexpr int bt709 = 1;

x264_param_t parametersFor(const H264Settings& settings) {
  x264_param_t parameters;
  checked(x264_param_default_preset(&parameters, "medium", "psnr"), "choosing the encoder's preset");
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
  parameters.b_vfr_input = 0;
  parameters.vui.i_sar_width = parameters.vui.i_sar_height = 1;
  parameters.vui.b_fullrange = 0;
  parameters.vui.i_colorprim = parameters.vui.i_transfer = parameters.vui.i_colmatrix = bt709;

  parameters.i_keyint_max = X264_KEYINT_MAX_INFINITE;
  parameters.i_scenecut_threshold = 0;
  parameters.i_bframe = 0;
  parameters.i_frame_reference = 1;
  parameters.analyse.i_weighted_pred = X264_WEIGHTP_NONE;
  parameters.rc.b_mb_tree = 0;
  parameters.rc.i_lookahead = 0;
  parameters.rc.i_rc_method = X264_RC_CQP;
  parameters.rc.i_qp_constant = 16;
  parameters.rc.f_ip_factor = 1;

  parameters.b_repeat_headers = 0;
  parameters.b_annexb = 0;
  checked(x264_param_apply_profile(&parameters, "high"), "choosing the H.264 profile");
  return parameters;
}

bool isSlice(const x264_nal_t& nal) {
  return nal.i_type == NAL_SLICE || nal.i_type == NAL_SLICE_IDR;
}

}  // namespace

H264Encoder::H264Encoder(const H264Settings& settings) {
  x264_param_t parameters = parametersFor(settings);
  encoder_.reset(checked(x264_encoder_open(&parameters), "the video encoder"));
  x264_nal_t* nals = nullptr;
  int count = 0;
  checked(x264_encoder_headers(encoder_.get(), &nals, &count), "making the video's headers");
  for (const x264_nal_t& nal : std::span(nals, static_cast<size_t>(count))) {
    const std::vector<uint8_t> unit(nal.p_payload + lengthBytes, nal.p_payload + nal.i_payload);
    if (nal.i_type == NAL_SPS) sps_ = unit;
    if (nal.i_type == NAL_PPS) pps_ = unit;
  }
}

std::span<const uint8_t> H264Encoder::encode(const YuvPicture& picture, PictureCoding coding) {
  x264_picture_t in;
  x264_picture_init(&in);
  in.i_type = coding == PictureCoding::Idr ? X264_TYPE_IDR : X264_TYPE_P;
  in.i_pts = picturesIn_++;
  in.img.i_csp = X264_CSP_NV12;
  in.img.i_plane = 2;
  // x264 copies from these planes and never writes to them.
  in.img.plane[0] = const_cast<uint8_t*>(picture.luma());
  in.img.plane[1] = const_cast<uint8_t*>(picture.chroma());
  in.img.i_stride[0] = in.img.i_stride[1] = static_cast<int>(picture.stride());

  x264_picture_t out;
  x264_nal_t* nals = nullptr;
  int count = 0;
  checked(x264_encoder_encode(encoder_.get(), &nals, &count, &in, &out), "encoding a picture");
  slices_.clear();
  for (const x264_nal_t& nal : std::span(nals, static_cast<size_t>(count)))
    if (isSlice(nal)) slices_.insert(slices_.end(), nal.p_payload, nal.p_payload + nal.i_payload);
  if (slices_.empty()) throw MovieFailure("the video encoder held a picture back");
  return slices_;
}

}  // namespace brisklet
