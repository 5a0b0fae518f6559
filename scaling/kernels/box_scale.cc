#include "scaling/kernels/box_scale.h"

#include "framework/cpu_features.h"

namespace Lumaforge {

void InitBoxScaleKernels(BoxScaleKernels* k, uint32_t cpuFeatures) {
  *k = {BoxHalf_c,      BoxHalf_c,        BoxThird_c,   BoxQuarter_c,
        BilinearLuma_c, BilinearChroma_c, PackedHalf_c, PackedBilinear_c};
  // Each level brings only some kernels, so the levels are installed one by
  // one in this order rather than through the five-step ladder; a later
  // present level replaces what an earlier one installed.
  if (cpuFeatures & kCpuSSE) {
    k->halfAligned = sse::BoxHalfAligned;
    k->halfUnaligned = sse::BoxHalf;
    k->quarter = sse::BoxQuarter;
  }
  if (cpuFeatures & kCpuSSE2) {
    k->generalLuma = sse2::BilinearLuma;
    k->generalChroma = sse2::BilinearChroma;
    k->packedHalf = sse2::PackedHalf;
    k->packedGeneral = sse2::PackedBilinear;
  }
  if (cpuFeatures & kCpuSSSE3) {
    k->halfAligned = ssse3::BoxHalfAligned;
    k->halfUnaligned = ssse3::BoxHalf;
    k->third = ssse3::BoxThird;
    k->quarter = ssse3::BoxQuarter;
    k->generalLuma = ssse3::BilinearLuma;
    k->packedHalf = ssse3::PackedHalf;
    k->packedGeneral = ssse3::PackedBilinear;
  }
  if (cpuFeatures & kCpuSSE41) {
    k->third = sse41::BoxThird;
    k->quarter = sse41::BoxQuarter;
    k->generalChroma = sse41::BilinearChroma;
    k->packedHalf = sse41::PackedHalf;
    k->packedGeneral = sse41::PackedBilinear;
  }
  if (cpuFeatures & kCpuAVX) {
    k->packedHalf = avx::PackedHalf;
    k->packedGeneral = avx::PackedBilinear;
  }
  if (cpuFeatures & kCpuAVX2) {
    k->generalLuma = avx2::BilinearLuma;
    k->generalChroma = avx2::BilinearChroma;
    k->packedHalf = avx2::PackedHalf;
    k->packedGeneral = avx2::PackedBilinear;
  }
}

}  // namespace Lumaforge
