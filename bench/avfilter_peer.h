// One of FFmpeg's video filters run through libavfilter on I420 frames: a
// graph buffer -> filter -> buffersink, frames pushed in and pulled out
// (temporal filters hold some frames back before the first comes out).
#ifndef LUMAFORGE_BENCH_AVFILTER_PEER_H_
#define LUMAFORGE_BENCH_AVFILTER_PEER_H_

#include <cstdint>
#include <string>

#include "bench/sr_upscaler.h"

struct AVFilterGraph;
struct AVFilterContext;
struct AVFrame;

namespace Lumaforge::bench {

class AvFilterPeer {
 public:
  // `filter`: a filter description such as "hqdn3d" or "atadenoise".
  AvFilterPeer(const std::string& filter, int32_t width, int32_t height);
  ~AvFilterPeer();
  AvFilterPeer(const AvFilterPeer&) = delete;
  AvFilterPeer& operator=(const AvFilterPeer&) = delete;

  // Copies `frame` into the peer's own frame, ready for Run (not timed).
  void Load(const I420Frame& frame);
  // Pushes the loaded frame through the graph; true when a frame came out.
  bool Run();
  // Copies the last frame that came out into `frame`.
  void Store(I420Frame& frame) const;

 private:
  AVFilterGraph* m_pGraph = nullptr;
  AVFilterContext* m_pSource = nullptr;
  AVFilterContext* m_pSink = nullptr;
  AVFrame* m_pInput = nullptr;
  AVFrame* m_pOutput = nullptr;
  int64_t m_iPts = 0;
};

}  // namespace Lumaforge::bench

#endif  // LUMAFORGE_BENCH_AVFILTER_PEER_H_
