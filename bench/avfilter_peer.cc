#include "bench/avfilter_peer.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}

#include <cstring>
#include <stdexcept>

namespace Lumaforge::bench {
namespace {

void Check(int status, const char* what) {
  if (status < 0) throw std::runtime_error(std::string("libavfilter: ") + what + " failed");
}

void CopyPlanes(const uint8_t* const from[3], const int fromStride[3], uint8_t* const to[3], const int toStride[3],
                int width, int height) {
  for (int k = 0; k < 3; ++k) {
    const int w = k ? width / 2 : width, h = k ? height / 2 : height;
    for (int y = 0; y < h; ++y) std::memcpy(to[k] + y * toStride[k], from[k] + y * fromStride[k], w);
  }
}

}  // namespace

AvFilterPeer::AvFilterPeer(const std::string& filter, int32_t width, int32_t height) {
  m_pGraph = avfilter_graph_alloc();
  // One thread, as the library runs.
  m_pGraph->nb_threads = 1;
  const std::string source = "video_size=" + std::to_string(width) + "x" + std::to_string(height) +
                             ":pix_fmt=yuv420p:time_base=1/25:pixel_aspect=1/1";
  Check(
      avfilter_graph_create_filter(&m_pSource, avfilter_get_by_name("buffer"), "in", source.c_str(), nullptr, m_pGraph),
      "buffer source");
  Check(avfilter_graph_create_filter(&m_pSink, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, m_pGraph),
        "buffer sink");
  AVFilterInOut* outputs = avfilter_inout_alloc();
  AVFilterInOut* inputs = avfilter_inout_alloc();
  outputs->name = av_strdup("in");
  outputs->filter_ctx = m_pSource;
  inputs->name = av_strdup("out");
  inputs->filter_ctx = m_pSink;
  Check(avfilter_graph_parse_ptr(m_pGraph, filter.c_str(), &inputs, &outputs, nullptr), filter.c_str());
  avfilter_inout_free(&inputs);
  avfilter_inout_free(&outputs);
  Check(avfilter_graph_config(m_pGraph, nullptr), "graph configuration");
  m_pInput = av_frame_alloc();
  m_pOutput = av_frame_alloc();
  m_pInput->format = AV_PIX_FMT_YUV420P;
  m_pInput->width = width;
  m_pInput->height = height;
  Check(av_frame_get_buffer(m_pInput, 64), "frame allocation");
}

AvFilterPeer::~AvFilterPeer() {
  av_frame_free(&m_pInput);
  av_frame_free(&m_pOutput);
  avfilter_graph_free(&m_pGraph);
}

void AvFilterPeer::Load(const I420Frame& frame) {
  Check(av_frame_make_writable(m_pInput), "frame");
  const VideoPicture& p = frame.picture;
  const uint8_t* from[3] = {p.planes[0], p.planes[1], p.planes[2]};
  const int fromStride[3] = {static_cast<int>(p.strides[0]), static_cast<int>(p.strides[1]),
                             static_cast<int>(p.strides[2])};
  CopyPlanes(from, fromStride, m_pInput->data, m_pInput->linesize, m_pInput->width, m_pInput->height);
  m_pInput->pts = m_iPts++;
}

bool AvFilterPeer::Run() {
  Check(av_buffersrc_add_frame_flags(m_pSource, m_pInput, AV_BUFFERSRC_FLAG_KEEP_REF), "push");
  av_frame_unref(m_pOutput);
  return av_buffersink_get_frame(m_pSink, m_pOutput) >= 0;
}

void AvFilterPeer::Store(I420Frame& frame) const {
  const VideoPicture& p = frame.picture;
  uint8_t* const to[3] = {p.planes[0], p.planes[1], p.planes[2]};
  const int toStride[3] = {static_cast<int>(p.strides[0]), static_cast<int>(p.strides[1]),
                           static_cast<int>(p.strides[2])};
  const uint8_t* from[3] = {m_pOutput->data[0], m_pOutput->data[1], m_pOutput->data[2]};
  CopyPlanes(from, m_pOutput->linesize, to, toStride, m_pOutput->width, m_pOutput->height);
}

}  // namespace Lumaforge::bench
