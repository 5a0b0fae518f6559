// deband (type 5): the fast deband into a new frame. The filter wants every
// plane on a 64-byte boundary, so the step works on aligned copies. With
// --param qp=FILE each frame takes its quantiser map (one byte per 16x16
// block, raster order) from FILE, frame after frame; the last map stays
// when the file ends.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "tools/lumaforge/errors.h"
#include "tools/lumaforge/file.h"
#include "tools/lumaforge/filter_steps.h"
#include "tools/lumaforge/library_params.h"

namespace Lumaforge::cli {
namespace {

constexpr size_t kAlignment = 64;

size_t RoundUp(size_t v) { return (v + kAlignment - 1) / kAlignment * kAlignment; }

// An I420 picture with 64-byte aligned planes and strides.
class AlignedPicture {
 public:
  AlignedPicture(uint32_t width, uint32_t height) {
    const size_t strides[3] = {RoundUp(width), RoundUp(width / 2), RoundUp(width / 2)};
    const size_t rows[3] = {height, height / 2, height / 2};
    size_t total = 0;
    for (int k = 0; k < 3; ++k) total += RoundUp(strides[k] * rows[k]);
    memory_.reset(static_cast<uint8_t*>(std::aligned_alloc(kAlignment, total + kAlignment)));
    if (!memory_)
      throw ToolError("out of memory for a " + std::to_string(width) + "x" + std::to_string(height) + " picture");
    picture = {};
    picture.width = width;
    picture.height = height;
    picture.format = LF_I420;
    uint8_t* at = memory_.get();
    for (int k = 0; k < 3; ++k) {
      picture.planes[k] = at;
      picture.strides[k] = static_cast<uint32_t>(strides[k]);
      at += RoundUp(strides[k] * rows[k]);
    }
  }
  // Rows between this picture and a frame's packed planes.
  void CopyFrom(const Frame& frame) {
    ForEachRow([&](int k, uint32_t row, uint32_t w, uint8_t* mine) {
      std::memcpy(mine, frame.Plane(k) + static_cast<size_t>(row) * w, w);
    });
  }
  void CopyTo(Frame& frame) const {
    ForEachRow([&](int k, uint32_t row, uint32_t w, uint8_t* mine) {
      std::memcpy(frame.Plane(k) + static_cast<size_t>(row) * w, mine, w);
    });
  }
  VideoPicture picture = {};

 private:
  template <typename Fn>
  void ForEachRow(Fn fn) const {
    for (int k = 0; k < 3; ++k) {
      const uint32_t w = k ? picture.width / 2 : picture.width, h = k ? picture.height / 2 : picture.height;
      for (uint32_t row = 0; row < h; ++row) fn(k, row, w, picture.planes[k] + row * picture.strides[k]);
    }
  }
  std::unique_ptr<uint8_t, decltype(&std::free)> memory_{nullptr, &std::free};
};

class DebandStep : public Step {
 public:
  DebandStep(const ParamSet& params, bool verbose) : Step(verbose), params_(params), qpPath_(params.Text("qp", "")) {}

  Frame Run(Frame frame) override {
    if (!in_ || frame.width() != in_->picture.width || frame.height() != in_->picture.height) {
      FastDebandConfig config = {frame.width(), frame.height(), 8, 6, 6, LF_I420, 0, 1};
      library_.Init(LF_FILTER_FAST_DEBAND, &config, 0);
      ApplyLibraryParams(library_, *FindFilterDescriptor(LF_FILTER_FAST_DEBAND), params_);
      in_ = std::make_unique<AlignedPicture>(frame.width(), frame.height());
      out_ = std::make_unique<AlignedPicture>(frame.width(), frame.height());
      qp_.assign(static_cast<size_t>((frame.width() + 15) / 16) * ((frame.height() + 15) / 16), 24);
    }
    in_->CopyFrom(frame);
    out_->CopyFrom(frame);
    ReadQpMap();
    in_->picture.qpMap = qpPath_.empty() ? nullptr : qp_.data();
    library_.Process(LF_FILTER_FAST_DEBAND, &in_->picture, &out_->picture);
    out_->CopyTo(frame);
    return frame;
  }

 private:
  void ReadQpMap() {
    if (qpPath_.empty()) return;
    if (!qpFile_) qpFile_ = std::make_unique<File>(qpPath_, File::kRead);
    std::vector<uint8_t> next(qp_.size());
    if (qpFile_->Read(next) == next.size()) qp_ = std::move(next);
  }

  ParamSet params_;
  std::string qpPath_;
  std::unique_ptr<File> qpFile_;
  std::vector<uint8_t> qp_;
  std::unique_ptr<AlignedPicture> in_, out_;
};

}  // namespace

std::unique_ptr<Step> MakeDebandStep(const ParamSet& params, bool verbose) {
  return std::make_unique<DebandStep>(params, verbose);
}

}  // namespace Lumaforge::cli
