#include "enhance/fast_deband.h"

#include <algorithm>
#include <cstring>

#include "enhance/kernels/deband_rows.h"
#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

constexpr uint32_t kDebandFormats[] = {LF_I420};
constexpr uint8_t kDefaultQp = 24;
constexpr uint32_t kPlaneAlignment = 64;

// The C runtime's rand() as the host's runtime computes it (a per-thread
// state times 214013 plus 2531011, bits 16..30), so every platform draws
// the same seeds.
thread_local uint32_t t_randState = 1;
uint32_t RuntimeRand() {
  t_randState = t_randState * 214013u + 2531011u;
  return (t_randState >> 16) & 0x7FFF;
}

bool Aligned(const uint8_t* p) { return reinterpret_cast<uintptr_t>(p) % kPlaneAlignment == 0; }

}  // namespace

CFastDeband::CFastDeband(uint32_t cpuFeatures) : m_CPUFlag(cpuFeatures) {
  InitDebandKernels(&m_kernels, m_CPUFlag);
  SetName("FastDeband");
  CreateLogger();
}

int32_t CFastDeband::Init(void* config, uint8_t /*flag*/) {
  if (config) {
    FastDebandConfig c;
    std::memcpy(&c, config, sizeof(c));
    if ((c.format & LF_FORMAT_CODE_MASK) != LF_I420) return LF_UNSUPPORTED;
    m_iWidth = static_cast<int32_t>(c.width);
    m_iHeight = static_cast<int32_t>(c.height);
    m_iDepthY = c.depthY;
    m_iDepthUV = c.depthUV;
    m_iStrength = c.strength;
    m_iDither = c.dither;
    m_iLog2Size = c.log2Size;
    std::memset(m_QpHistory, 0, sizeof(m_QpHistory));
  }
  InitDebandKernels(&m_kernels, m_CPUFlag);
  m_bInitialised = true;
  return LF_OK;
}

int32_t CFastDeband::Uninit() {
  m_QpList.Free();
  m_Ring.Free();
  m_uQpCount = 0;
  m_bQpListAllocated = false;
  m_iFrameIndex = 0;
  m_bInitialised = false;
  ResetTiming();
  return LF_OK;
}

int32_t CFastDeband::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  int32_t v;
  std::memcpy(&v, value, sizeof(v));
  switch (id) {
    case LF_PARAM_DEBAND_SET_DEPTH_Y:
      if (v >= 0 && v <= 4) m_iDepthY = v;
      break;
    case LF_PARAM_DEBAND_SET_DEPTH_UV:
      if (v >= 1 && v <= 4) m_iDepthUV = v;
      break;
    case LF_PARAM_DEBAND_SET_STRENGTH: m_iStrength = v; break;
    case LF_PARAM_DEBAND_SET_DITHER: m_iDither = v; break;
    case LF_PARAM_DEBAND_SET_LOG2_SIZE: m_iLog2Size = v; break;
    case LF_PARAM_DEBAND_SET_SEED_METHOD: m_iSeedMethod = v; break;
    case LF_PARAM_DEBAND_SET_AUTO: m_bAutoMode = v != 0; break;
    default: break;
  }
  return LF_OK;
}

int32_t CFastDeband::GetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  const int32_t* answer = nullptr;
  switch (static_cast<int32_t>(id)) {
    case LF_PARAM_DEBAND_GET_DEPTH_Y: answer = &m_iDepthY; break;
    case LF_PARAM_DEBAND_GET_DEPTH_UV: answer = &m_iDepthUV; break;
    case LF_PARAM_DEBAND_GET_STRENGTH: answer = &m_iStrength; break;
    case LF_PARAM_DEBAND_GET_DITHER: answer = &m_iDither; break;
    case LF_PARAM_DEBAND_GET_LOG2_SIZE:
    case LF_PARAM_DEBAND_GET_LOG2_SIZE + 2: answer = &m_iLog2Size; break;
    case LF_PARAM_DEBAND_GET_AUTO: {
      const uint8_t automatic = m_bAutoMode;
      std::memcpy(value, &automatic, 1);
      break;
    }
    default: break;
  }
  if (answer) std::memcpy(value, answer, sizeof(int32_t));
  AnswerTimePerFrame(id, value);
  return LF_OK;
}

bool CFastDeband::PrepareQpList(uint32_t width, uint32_t height) {
  const auto block = static_cast<uint32_t>(m_iBlockSize);
  const uint32_t columns = (width - 1 + block) / block, rows = (height - 1 + block) / block;
  if (m_pLogger) {
    m_pLogger->Info("CFastDeband::AllocateQPList(), allocate(reallocate) QPList buffer, size=%d*%d",
                    static_cast<int>(columns), static_cast<int>(rows));
  }
  const uint64_t count = uint64_t{columns} * rows;
  uint8_t* list = count <= kMaxPlaneBytes ? m_QpList.Reserve(static_cast<uint32_t>(count)) : nullptr;
  if (!list) return false;
  std::memset(list, kDefaultQp, count);
  m_uQpCount = static_cast<uint32_t>(count);
  m_uQpWidth = width, m_uQpHeight = height;
  m_bQpListAllocated = true;
  return true;
}

void CFastDeband::RecordAverageQp(const uint8_t* map) {
  uint64_t sum = 0;
  for (uint32_t i = 0; i < m_uQpCount; ++i) sum += map[i];
  std::memmove(m_QpHistory + 1, m_QpHistory, sizeof(m_QpHistory) - 1);
  m_QpHistory[0] = static_cast<uint8_t>(sum / m_uQpCount);
}

uint32_t CFastDeband::NextSeed() {
  if (m_iSeedMethod == 1) return static_cast<uint32_t>(m_iFrameIndex % 2);
  return RuntimeRand();
}

bool CFastDeband::RunPlane(const uint8_t* src, ptrdiff_t srcStride, uint8_t* dst, ptrdiff_t dstStride, int32_t width,
                           int32_t height, int32_t strength, int32_t spanH, int32_t spanV, int32_t depth,
                           int32_t dither, uint32_t seed) {
  for (int32_t passes = 0;; ++passes) {
    // Only the last pass dithers; the others round plainly.
    const bool last = !(passes + 1 < depth && spanH >= 4 && spanV >= 4);
    const int32_t rows = 1 << deband::HoldSpan(spanV);
    auto* ring = reinterpret_cast<uint16_t*>(m_Ring.Reserve(
        static_cast<uint32_t>(uint64_t{2} * static_cast<uint32_t>(rows) * static_cast<uint32_t>(width))));
    if (!ring) return false;
    const DebandJob job = {src,   srcStride,         dst,  dstStride, width,        height, 0, height, strength, spanH,
                           spanV, last ? dither : 0, seed, ring,      m_DitherTable};
    m_kernels.plane(job);
    if (last) return true;
    --spanH, --spanV;
    src = dst, srcStride = dstStride;
  }
}

bool CFastDeband::RunPasses(const VideoPicture& input, const VideoPicture& output, int32_t width, int32_t height,
                            int32_t strength, int32_t size, uint32_t seed) {
  if (strength == 0) return true;
  const int32_t spanH = std::max(size, 3), spanV = std::min(size, 6);
  // Without an output luma plane the luma is debanded in place.
  uint8_t* lumaOut = output.planes[0] ? output.planes[0] : input.planes[0];
  const ptrdiff_t lumaStride = output.planes[0] ? output.strides[0] : input.strides[0];
  if (!RunPlane(input.planes[0], input.strides[0], lumaOut, lumaStride, width, height, strength, spanH, spanV,
                std::max(m_iDepthY, 0), m_iDither, seed))
    return false;
  for (int k = 1; k < 3; ++k) {
    if (!RunPlane(input.planes[k], input.strides[k], output.planes[k], output.strides[k], width / 2, height / 2,
                  strength, spanH - 1, spanV - 1, std::max(m_iDepthUV, 1), m_iDither ? 6 : 0, seed))
      return false;
  }
  return true;
}

int32_t CFastDeband::Process(VideoPicture* input, VideoPicture* output) {
  if (!input || !output) return LF_INVALID_PARAMETER;
  if ((input->format & LF_FORMAT_CODE_MASK) != LF_I420) return LF_UNSUPPORTED;
  // An empty picture has no quantiser blocks to average; one past 2 GB a
  // quantiser list of its own.
  if (!input->width || !input->height || uint64_t{input->width} * input->height > kMaxPlaneBytes)
    return LF_INVALID_PARAMETER;
  // Also when the list was cut for another picture than this one (a frame
  // of the configured size after one of another size): the picture's own
  // map is read over the list's count.
  if (!m_bQpListAllocated || static_cast<int32_t>(input->width) != m_iWidth ||
      static_cast<int32_t>(input->height) != m_iHeight || input->width != m_uQpWidth || input->height != m_uQpHeight) {
    if (!PrepareQpList(input->width, input->height)) return LF_SETUP_ALLOC_FAILED;
  }
  // -5: the output must be a picture of its own of the same size.
  if (input->width != output->width || input->height != output->height) return LF_NOT_CREATED;
  for (int k = 0; k < 3; ++k) {
    if (input->planes[k] == output->planes[k]) return LF_NOT_CREATED;
  }
  for (int k = 0; k < 3; ++k) {
    if (!Aligned(input->planes[k]) || !Aligned(output->planes[k])) return LF_INVALID_PARAMETER;
  }
  // The configured size is debanded, held to the picture; the picture's
  // planes and rows must be there (only the output luma may be missing).
  const int32_t width = std::min(m_iWidth, static_cast<int32_t>(input->width));
  const int32_t height = std::min(m_iHeight, static_cast<int32_t>(input->height));
  const uint32_t lumaRow = input->width, chromaRow = input->width / 2;
  if (!input->planes[0] || !input->planes[1] || !input->planes[2] || !output->planes[1] || !output->planes[2] ||
      input->strides[0] < lumaRow || input->strides[1] < chromaRow || input->strides[2] < chromaRow ||
      (output->planes[0] && output->strides[0] < lumaRow) || output->strides[1] < chromaRow ||
      output->strides[2] < chromaRow || uint64_t{input->strides[0]} * input->height > kMaxPlaneBytes ||
      uint64_t{output->strides[0]} * output->height > kMaxPlaneBytes)
    return LF_INVALID_PARAMETER;

  if (m_iFrameIndex == 0 && m_pLogger) {
    m_pLogger->Info(
        "m_CPUFlag=%d m_iWidth=%d m_iHeight=%d m_iFrameIndex=%d m_iStrength=%d m_iDither=%d m_iLog2Size=%d "
        "m_iDepthY=%d m_iDepthUV=%d m_iSeedMethod=%d m_bAutoMode=%d m_iBlockSize=%d",
        static_cast<int>(m_CPUFlag), m_iWidth, m_iHeight, 0, m_iStrength, m_iDither, m_iLog2Size, m_iDepthY, m_iDepthUV,
        m_iSeedMethod, m_bAutoMode ? 1 : 0, m_iBlockSize);
  }
  const int64_t startUs = NowMicroseconds();
  RecordAverageQp(input->qpMap ? input->qpMap : m_QpList.data());
  const uint32_t seed = NextSeed();
  int32_t strength = m_iStrength, size = m_iLog2Size;
  if (m_bAutoMode && m_iFrameIndex >= 16) {
    int32_t sum = 0;
    for (const uint8_t qp : m_QpHistory) sum += qp;
    const int32_t q = sum >> 4;
    strength = std::max(q - 64, 0) / 20 + 1;
    size = (m_iWidth >= 1280 ? 1 : 0) + (m_iHeight < 768 ? 4 : 5);
    if (m_pLogger) m_pLogger->Info("strength %d, size %d dither %d qp %d", strength, size, strength / 2 + 5, q);
  }
  RunPasses(*input, *output, width, height, strength, size, seed);
  ++m_iFrameIndex;
  FinishFrameTiming(startUs);
  return LF_OK;
}

namespace {
constexpr ParamDescriptor kDebandParams[] = {
    {LF_PARAM_DEBAND_SET_DEPTH_Y, ParamType::kInt32, kParamSet, "depth_y", "luma passes 0..4 (others ignored)", 0, 4},
    {LF_PARAM_DEBAND_SET_DEPTH_UV, ParamType::kInt32, kParamSet, "depth_uv", "chroma passes 1..4 (others ignored)", 1,
     4},
    {LF_PARAM_DEBAND_SET_STRENGTH, ParamType::kInt32, kParamSet, "strength", "tap threshold in levels, 0 off", 0, 255},
    {LF_PARAM_DEBAND_SET_DITHER, ParamType::kInt32, kParamSet, "dither",
     "dither level: 0..2 plain rounding, 6 +-1/2 level, each step above doubles it", 0, 16},
    {LF_PARAM_DEBAND_SET_LOG2_SIZE, ParamType::kInt32, kParamSet, "size", "log2 of the sampling span (3..6)", 0, 16},
    {LF_PARAM_DEBAND_SET_SEED_METHOD, ParamType::kInt32, kParamSet, "seed",
     "1: dither seed from the frame parity, else random", 0, 1},
    {LF_PARAM_DEBAND_SET_AUTO, ParamType::kInt32, kParamSet, "auto", "1: strength and size from the QP map", 0, 1}};
}  // namespace

extern const FilterDescriptor kFastDebandDescriptor = {LF_FILTER_FAST_DEBAND,
                                                       "FastDeband",
                                                       "Create FastDeband(%p)",
                                                       CreateFilter<CFastDeband>,
                                                       false,
                                                       FormatReading::kPlanes,
                                                       kDebandFormats,
                                                       kDebandParams};

}  // namespace Lumaforge
