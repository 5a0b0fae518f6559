#include "bench/sr_upscaler.h"

#include <libyuv.h>

#include <cstring>
#include <string>

namespace Lumaforge::bench {
namespace {

constexpr size_t kAlignment = 64;

size_t RoundUp(size_t value) { return (value + kAlignment - 1) / kAlignment * kAlignment; }

void CopyPlane(const LumaPicture& from, uint8_t* to, uint32_t stride) {
  for (int32_t y = 0; y < from.height; ++y)
    std::memcpy(to + static_cast<size_t>(y) * stride, &from.pixels[static_cast<size_t>(y) * from.width], from.width);
}

}  // namespace

I420Frame::I420Frame(int32_t width, int32_t height) {
  picture.width = static_cast<uint32_t>(width);
  picture.height = static_cast<uint32_t>(height);
  picture.format = LF_I420;
  const size_t lumaStride = RoundUp(width), chromaStride = RoundUp(width / 2);
  const size_t lumaBytes = lumaStride * height, chromaBytes = RoundUp(chromaStride * (height / 2));
  m_pMemory.reset(static_cast<uint8_t*>(std::aligned_alloc(kAlignment, lumaBytes + 2 * chromaBytes)));
  std::memset(m_pMemory.get(), 0, lumaBytes + 2 * chromaBytes);
  picture.planes[0] = m_pMemory.get();
  picture.planes[1] = picture.planes[0] + lumaBytes;
  picture.planes[2] = picture.planes[1] + chromaBytes;
  picture.strides[0] = static_cast<uint32_t>(lumaStride);
  picture.strides[1] = picture.strides[2] = static_cast<uint32_t>(chromaStride);
}

I420Frame::I420Frame(const LumaPicture& luma, const LumaPicture* chroma) : I420Frame(luma.width, luma.height) {
  CopyPlane(luma, picture.planes[0], picture.strides[0]);
  for (int k = 1; k < 3; ++k) {
    if (chroma) {
      CopyPlane(*chroma, picture.planes[k], picture.strides[k]);
    } else {
      for (uint32_t y = 0; y < picture.height / 2; ++y)
        std::memset(picture.planes[k] + y * picture.strides[k], 128, picture.width / 2);
    }
  }
}

LumaPicture I420Frame::Luma() const {
  LumaPicture luma(static_cast<int32_t>(picture.width), static_cast<int32_t>(picture.height));
  for (int32_t y = 0; y < luma.height; ++y)
    std::memcpy(&luma.pixels[static_cast<size_t>(y) * luma.width], picture.planes[0] + y * picture.strides[0],
                luma.width);
  return luma;
}

I420Frame I420Frame::Clone() const {
  I420Frame copy(static_cast<int32_t>(picture.width), static_cast<int32_t>(picture.height));
  for (int k = 0; k < 3; ++k) {
    const uint32_t rows = k == 0 ? picture.height : picture.height / 2;
    std::memcpy(copy.picture.planes[k], picture.planes[k], static_cast<size_t>(picture.strides[k]) * rows);
  }
  return copy;
}

const char* SrModeName(SrMode mode) {
  switch (mode) {
    case SrMode::kStandard2x: return "SR 2x standard";
    case SrMode::kEnhanced2x: return "SR 2x enhanced";
    case SrMode::kStandard15: return "SR 1.5x standard";
    case SrMode::kAlternative15: return "SR 1.5x alternative";
  }
  return "?";
}

SrUpscaler::SrUpscaler(SrMode mode, const char* coefficientFile) {
  CreateLumaforge(&m_pManager);
  int32_t silent = -1;
  m_pManager->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
  m_pManager->Init(LF_FILTER_SUPER_RESOLUTION, nullptr, 1);
  uint8_t on = 1;
  if (mode == SrMode::kEnhanced2x) {
    m_pManager->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ENHANCED, &on);
    std::string path = coefficientFile;
    m_pManager->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_COEFFICIENT_FILE, path.data());
  }
  if (mode == SrMode::kAlternative15) m_pManager->SetParam(LF_FILTER_SUPER_RESOLUTION, LF_PARAM_SR_ALTERNATIVE_15, &on);
}

SrUpscaler::~SrUpscaler() { DestroyLumaforge(m_pManager); }

LumaPicture SrUpscaler::Upscale(const LumaPicture& source, int32_t width, int32_t height) {
  I420Frame in(source), out(width, height);
  if (Process(in, out) != LF_OK) return {};
  return out.Luma();
}

LumaPicture LibyuvBilinear(const LumaPicture& source, int32_t width, int32_t height) {
  LumaPicture result(width, height);
  libyuv::ScalePlane(source.pixels.data(), source.width, source.width, source.height, result.pixels.data(), width,
                     width, height, libyuv::kFilterBilinear);
  return result;
}

LumaPicture Cropped(const LumaPicture& picture, int32_t width, int32_t height) {
  LumaPicture corner(width, height);
  for (int32_t y = 0; y < height; ++y)
    std::memcpy(&corner.pixels[static_cast<size_t>(y) * width], &picture.pixels[static_cast<size_t>(y) * picture.width],
                width);
  return corner;
}

}  // namespace Lumaforge::bench
