#include "framework/formats.h"

namespace Lumaforge {

const RgbLayout* GetRgbLayout(uint32_t code) {
  static constexpr RgbLayout kRgb24{0, 1, 2, -1, 3};
  static constexpr RgbLayout kRgba{0, 1, 2, 3, 4};
  static constexpr RgbLayout kBgr24{2, 1, 0, -1, 3};
  static constexpr RgbLayout kBgra{2, 1, 0, 3, 4};
  static constexpr RgbLayout kAbgr{3, 2, 1, 0, 4};
  static constexpr RgbLayout kArgb{1, 2, 3, 0, 4};
  static constexpr RgbLayout kRgbp{0, 1, 2, -1, 1};
  static constexpr RgbLayout kBgrp{2, 1, 0, -1, 1};
  switch (code) {
    case LF_RGB24: return &kRgb24;
    case LF_RGBA: return &kRgba;
    case LF_BGR24: return &kBgr24;
    case LF_BGRA: return &kBgra;
    case LF_ABGR: return &kAbgr;
    case LF_ARGB: return &kArgb;
    case LF_RGBP: return &kRgbp;
    case LF_BGRP: return &kBgrp;
    default: return nullptr;
  }
}

const Packed422Layout* GetPacked422Layout(uint32_t code) {
  static constexpr Packed422Layout kYuy2{0, 1, 2, 3};
  static constexpr Packed422Layout kYvyu{0, 3, 2, 1};
  static constexpr Packed422Layout kUyvy{1, 0, 3, 2};
  static constexpr Packed422Layout kVyuy{1, 2, 3, 0};
  switch (code) {
    case LF_YUY2: return &kYuy2;
    case LF_YVYU: return &kYvyu;
    case LF_UYVY: return &kUyvy;
    case LF_VYUY: return &kVyuy;
    default: return nullptr;
  }
}

}  // namespace Lumaforge
