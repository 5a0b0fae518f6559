#include "tests/api/csc_model.h"

#include <algorithm>

namespace Lumaforge::test {
namespace {

struct RgbBytes {
  int r, g, b, a, step;  // step 1: planar, indices are plane numbers
};

bool RgbBytesOf(uint32_t code, RgbBytes* out) {
  switch (code) {
    case LF_RGB24: *out = {0, 1, 2, -1, 3}; return true;
    case LF_RGBA: *out = {0, 1, 2, 3, 4}; return true;
    case LF_BGR24: *out = {2, 1, 0, -1, 3}; return true;
    case LF_BGRA: *out = {2, 1, 0, 3, 4}; return true;
    case LF_ABGR: *out = {3, 2, 1, 0, 4}; return true;
    case LF_ARGB: *out = {1, 2, 3, 0, 4}; return true;
    case LF_RGBP: *out = {0, 1, 2, -1, 1}; return true;
    case LF_BGRP: *out = {2, 1, 0, -1, 1}; return true;
    default: return false;
  }
}

// Byte positions of Y0, U, Y1, V in a pixel pair.
void PairBytesOf(uint32_t code, int p[4]) {
  static const int yuy2[4] = {0, 1, 2, 3}, yvyu[4] = {0, 3, 2, 1}, uyvy[4] = {1, 0, 3, 2}, vyuy[4] = {1, 2, 3, 0};
  const int* src = code == LF_YUY2 ? yuy2 : code == LF_YVYU ? yvyu : code == LF_UYVY ? uyvy : vyuy;
  std::copy(src, src + 4, p);
}

int Clamp(int v) { return v < 0 ? 0 : (v > 255 ? 255 : v); }

uint8_t* Byte(const VideoPicture& p, int plane, int x, int y) {
  return p.planes[plane] + static_cast<size_t>(y) * p.strides[plane] + x;
}

}  // namespace

Kind KindOf(uint32_t code) {
  RgbBytes rgb;
  if (RgbBytesOf(code, &rgb)) return Kind::kRgb;
  if (code == LF_YUY2 || code == LF_YVYU || code == LF_UYVY || code == LF_VYUY) return Kind::kYuv422;
  if (code == LF_I420 || code == LF_YV12 || code == LF_NV12 || code == LF_NV21) return Kind::kYuv420;
  return Kind::kYuvFullWidthChroma;
}

bool ConversionSupported(uint32_t inCode, uint32_t outCode) {
  if (outCode < 1 || outCode > 31) return false;
  const Kind in = (inCode >= 1 && inCode <= 31) ? KindOf(inCode) : Kind::kYuvFullWidthChroma;
  const Kind out = KindOf(outCode);
  if (out == Kind::kYuvFullWidthChroma) return false;
  if (in == Kind::kYuvFullWidthChroma) return outCode == LF_I420 || outCode == LF_YV12;
  return true;
}

Samples ReadSamples(const VideoPicture& p, bool mirrored) {
  const uint32_t code = p.format & LF_FORMAT_CODE_MASK;
  Samples s;
  s.kind = KindOf(code);
  s.width = static_cast<int>(p.width);
  s.height = static_cast<int>(p.height);
  const int w = s.width, h = s.height;
  auto row = [&](int y, int rows) { return mirrored ? rows - 1 - y : y; };

  if (s.kind == Kind::kRgb) {
    RgbBytes l;
    RgbBytesOf(code, &l);
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        const int sy = row(y, h);
        auto channel = [&](int index) {
          if (index < 0) return -1;
          if (l.step == 1) return static_cast<int>(*Byte(p, 0, x, sy + index * h));  // planes stacked by height
          return static_cast<int>(*Byte(p, 0, x * l.step + index, sy));
        };
        s.r.push_back(channel(l.r));
        s.g.push_back(channel(l.g));
        s.b.push_back(channel(l.b));
        s.a.push_back(channel(l.a));
      }
    }
    return s;
  }
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      if (s.kind == Kind::kYuv422) {
        int pb[4];
        PairBytesOf(code, pb);
        s.y.push_back(*Byte(p, 0, (x / 2) * 4 + (x % 2 ? pb[2] : pb[0]), row(y, h)));
      } else {
        s.y.push_back(*Byte(p, 0, x, row(y, h)));
      }
    }
  }
  s.chromaWidth = s.kind == Kind::kYuvFullWidthChroma ? w : w / 2;
  s.chromaHeight = s.kind == Kind::kYuv422 ? h : h / 2;
  for (int c = 0; c < s.chromaHeight; ++c) {
    const int sc = row(c, s.chromaHeight);
    for (int i = 0; i < s.chromaWidth; ++i) {
      int u, v;
      if (s.kind == Kind::kYuv422) {
        int pb[4];
        PairBytesOf(code, pb);
        u = *Byte(p, 0, i * 4 + pb[1], sc);
        v = *Byte(p, 0, i * 4 + pb[3], sc);
      } else if (code == LF_NV12 || code == LF_NV21) {
        const int first = *Byte(p, 1, 2 * i, sc), second = *Byte(p, 1, 2 * i + 1, sc);
        u = code == LF_NV12 ? first : second;
        v = code == LF_NV12 ? second : first;
      } else {
        const bool swapped = code == LF_YV12;
        u = *Byte(p, swapped ? 2 : 1, i, sc);
        v = *Byte(p, swapped ? 1 : 2, i, sc);
      }
      s.u.push_back(u);
      s.v.push_back(v);
    }
  }
  return s;
}

Samples ExpectedConversion(const Samples& in, uint32_t outCode) {
  Samples out;
  out.kind = KindOf(outCode);
  out.width = in.width;
  out.height = in.height;
  const int w = in.width, h = in.height;
  auto chromaOf = [&](int x, int y, bool wantU) {
    const std::vector<int>& plane = wantU ? in.u : in.v;
    const int cy = in.kind == Kind::kYuv420 ? y / 2 : y;
    return plane[cy * in.chromaWidth + x / 2];
  };

  if (out.kind == Kind::kRgb) {
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        const int i = y * w + x;
        if (in.kind == Kind::kRgb) {
          out.r.push_back(in.r[i]);
          out.g.push_back(in.g[i]);
          out.b.push_back(in.b[i]);
          out.a.push_back(in.a[i] < 0 ? 255 : in.a[i]);
          continue;
        }
        const int yy = (in.y[i] - 16) * 74, u = chromaOf(x, y, true) - 128, v = chromaOf(x, y, false) - 128;
        out.r.push_back(Clamp((yy + v * 102) >> 6));
        out.g.push_back(Clamp((yy - u * 25 - v * 52) >> 6));
        out.b.push_back(Clamp((yy + u * 129) >> 6));
        out.a.push_back(255);
      }
    }
    return out;
  }

  out.chromaWidth = w / 2;
  out.chromaHeight = out.kind == Kind::kYuv422 ? h : h / 2;
  if (in.kind == Kind::kRgb) {
    for (int i = 0; i < w * h; ++i) out.y.push_back(((66 * in.r[i] + 129 * in.g[i] + 25 * in.b[i] + 128) >> 8) + 16);
    const bool pairs = out.kind == Kind::kYuv422;
    for (int c = 0; c < out.chromaHeight; ++c) {
      for (int x = 0; x < w / 2; ++x) {
        int sb = 0, sg = 0, sr = 0;
        for (int dy = 0; dy < (pairs ? 1 : 2); ++dy) {
          for (int dx = 0; dx < 2; ++dx) {
            const int i = ((pairs ? c : 2 * c) + dy) * w + 2 * x + dx;
            sb += in.b[i];
            sg += in.g[i];
            sr += in.r[i];
          }
        }
        const int shift = pairs ? 9 : 10, round = pairs ? 256 : 512;
        out.u.push_back(((112 * sb - 74 * sg - 38 * sr + round) >> shift) + 128);
        out.v.push_back(((112 * sr - 94 * sg - 18 * sb + round) >> shift) + 128);
      }
    }
    return out;
  }

  out.y = in.y;
  for (int c = 0; c < out.chromaHeight; ++c) {
    for (int x = 0; x < w / 2; ++x) {
      for (const bool wantU : {true, false}) {
        const std::vector<int>& plane = wantU ? in.u : in.v;
        int value;
        if (in.kind == out.kind) {
          value = plane[c * in.chromaWidth + x];
        } else if (in.kind == Kind::kYuv422) {  // to 4:2:0: average the row pair
          value = (plane[2 * c * in.chromaWidth + x] + plane[(2 * c + 1) * in.chromaWidth + x] + 1) >> 1;
        } else if (in.kind == Kind::kYuv420) {  // to 4:2:2: each chroma row serves two rows
          value = plane[(c / 2) * in.chromaWidth + x];
        } else {  // full-width chroma: every other sample
          value = plane[c * in.chromaWidth + 2 * x];
        }
        (wantU ? out.u : out.v).push_back(value);
      }
    }
  }
  return out;
}

}  // namespace Lumaforge::test
