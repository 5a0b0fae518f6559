#include "filters/gauss_blur.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "filters/kernels/deriche_coefficients.h"
#include "framework/buffers.h"
#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/formats.h"
#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

constexpr uint32_t kGaussBlurFormats[] = {LF_I420, LF_YV12, LF_RGBA, LF_BGRA, LF_ABGR, LF_ARGB, LF_VYUY};

// The vector passes load whole cache lines of the float buffers.
constexpr uint32_t kBufferAlignment = 64;

float* ReserveFloats(WorkBlock& block, uint64_t count) {
  const uint64_t bytes = count * sizeof(float);
  if (bytes > UINT32_MAX) return nullptr;
  return reinterpret_cast<float*>(block.Reserve(static_cast<uint32_t>(bytes), kBufferAlignment));
}

// The filter writes the input's layout into the output planes. An output
// record that states a size or format (non-zero) must have planes at least
// that large; fields left at zero take the input's.
bool OutputHolds(const VideoPicture& output, const PlaneLayout& result, const VideoPicture& input) {
  if (!output.width && !output.height && !output.format) return true;
  const uint32_t format = output.format ? output.format : input.format;
  const PlaneLayout stated = LayoutOf(format, FormatReading::kPlanes, output.width ? output.width : input.width,
                                      output.height ? output.height : input.height);
  if (stated.planes != result.planes) return false;
  for (int32_t k = 0; k < result.planes; ++k) {
    if (stated.plane[k].rowBytes * stated.plane[k].height < result.plane[k].rowBytes * result.plane[k].height)
      return false;
  }
  return true;
}

}  // namespace

CGaussBlur::CGaussBlur(uint32_t cpuFeatures) {
  SetName("GaussBlur");
  CreateLogger();
  m_coefficients = ComputeDericheCoefficients(m_fSigma);
  InitGaussBlurKernels(&m_kernels, cpuFeatures);
}

bool CGaussBlur::SetSigma(const void* value) {
  float sigma;
  std::memcpy(&sigma, value, sizeof(sigma));
  // NaN and infinities would make every coefficient NaN.
  if (!std::isfinite(sigma)) return false;
  m_fSigma = std::clamp(sigma, kMinGaussSigma, kMaxGaussSigma);
  m_coefficients = ComputeDericheCoefficients(m_fSigma);
  return true;
}

int32_t CGaussBlur::Init(void* config, uint8_t /*flag*/) {
  if (config && !SetSigma(config)) return LF_INVALID_PARAMETER;
  ResetTiming();
  return LF_OK;
}

int32_t CGaussBlur::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  if (id == LF_PARAM_BLUR_SIGMA && !SetSigma(value)) return LF_INVALID_PARAMETER;
  return LF_OK;
}

int32_t CGaussBlur::GetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  if (id == LF_PARAM_BLUR_SIGMA) std::memcpy(value, &m_fSigma, sizeof(m_fSigma));
  AnswerTimePerFrame(id, value);
  return LF_OK;
}

void CGaussBlur::FreeBuffers() {
  m_LineBuffer.Free();
  m_Transposed.Free();
  m_pLineBuffer = m_pTransposed = nullptr;
}

bool CGaussBlur::EnsureBuffers(uint32_t channels, uint32_t width, uint32_t height) {
  if (channels == m_uCapacityChannels && width <= m_uCapacityWidth && height <= m_uCapacityHeight && m_pLineBuffer &&
      m_pTransposed) {
    return true;
  }
  // Both are replaced and sized for this picture: the capacity follows the
  // last allocation, as a smaller picture of another shape may come next.
  FreeBuffers();
  m_pLineBuffer = ReserveFloats(m_LineBuffer, uint64_t{std::max(width, height)} * kGaussLineFloatsPerSample);
  m_pTransposed = ReserveFloats(m_Transposed, uint64_t{channels} * width * height);
  if (!m_pLineBuffer || !m_pTransposed) {
    FreeBuffers();
    return false;
  }
  m_uCapacityWidth = width;
  m_uCapacityHeight = height;
  m_uCapacityChannels = channels;
  return true;
}

bool CGaussBlur::Blur(const uint8_t* src, uint8_t* dst, uint32_t channels, uint32_t width, uint32_t height) {
  if (width == 0 || height == 0) return true;
  if (!EnsureBuffers(channels, width, height)) return false;
  const auto w = static_cast<int32_t>(width), h = static_cast<int32_t>(height);
  const ptrdiff_t stride = static_cast<ptrdiff_t>(width) * channels;
  GaussRowPassKernel* rowPass = channels == 4 ? m_kernels.rowPass4 : m_kernels.rowPass1;
  GaussColumnPassKernel* columnPass = channels == 4 ? m_kernels.columnPass4 : m_kernels.columnPass1;
  rowPass(src, stride, w, h, m_coefficients, m_pLineBuffer, m_pTransposed);
  columnPass(m_pTransposed, w, h, m_coefficients, m_pLineBuffer, dst, stride);
  return true;
}

int32_t CGaussBlur::Process(VideoPicture* input, VideoPicture* output) {
  if (!input || !output) return LF_INVALID_PARAMETER;
  const int64_t startUs = NowMicroseconds();
  const uint32_t code = FormatCode(input->format);
  if (!ListsFormat(kGaussBlurFormats, code)) return LF_UNSUPPORTED;
  // 32-bit RGB blurs its four channels together, the others plane by plane
  // (code 31 is one grey plane here).
  const PlaneLayout layout = LayoutOf(code, FormatReading::kPlanes, input->width, input->height);
  if (!PlanesPresent(*input, layout) || !PlanesPresent(*output, layout)) return LF_INVALID_PARAMETER;
  if (!PackedPlanesFit(layout)) return LF_INVALID_PARAMETER;
  if (!OutputHolds(*output, layout, *input)) return LF_UNSUPPORTED;
  for (int32_t k = 0; k < layout.planes; ++k) {
    const PlaneShape& plane = layout.plane[k];
    if (!Blur(input->planes[k], output->planes[k], layout.bytesPerPixel, plane.width, plane.height)) return LF_FAILED;
  }
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr ParamDescriptor kGaussBlurParams[] = {
    {LF_PARAM_BLUR_SIGMA, ParamType::kFloat, kParamSet | kParamGet, "sigma",
     "standard deviation in pixels, held to 0.5 .. 1000 (NaN and infinities refused)", 0.5, 1000}};
}  // namespace

extern const FilterDescriptor kGaussBlurDescriptor = {LF_FILTER_GAUSS_BLUR,     "GaussBlur",     "Create GaussBlur(%p)",
                                                      CreateFilter<CGaussBlur>, false,           FormatReading::kPlanes,
                                                      kGaussBlurFormats,        kGaussBlurParams};

}  // namespace Lumaforge
