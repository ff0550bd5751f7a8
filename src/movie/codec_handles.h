#pragma once

#include <cstdint>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}
#include <x264.h>

namespace brisklet {

struct CloseX264 {
  void operator()(x264_t* encoder) const { x264_encoder_close(encoder); }
};
using X264Ptr = std::unique_ptr<x264_t, CloseX264>;

struct FreeCodecContext {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
using CodecContextPtr = std::unique_ptr<AVCodecContext, FreeCodecContext>;

struct FreeFrame {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using FramePtr = std::unique_ptr<AVFrame, FreeFrame>;

struct FreePacket {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using PacketPtr = std::unique_ptr<AVPacket, FreePacket>;

/// Frees the format context alone: its I/O context is an `IoContextPtr` of its own.
struct FreeFormatContext {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};
using FormatContextPtr = std::unique_ptr<AVFormatContext, FreeFormatContext>;

struct FreeIoContext {
  void operator()(AVIOContext* context) const {
    av_freep(&context->buffer);
    avio_context_free(&context);
  }
};
using IoContextPtr = std::unique_ptr<AVIOContext, FreeIoContext>;

}  // namespace brisklet
