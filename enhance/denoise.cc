#include "enhance/denoise.h"

#include <cstring>

#include "framework/clock.h"
#include "framework/filter_descriptor.h"
#include "framework/plane_layout.h"

namespace Lumaforge {
namespace {

constexpr const char* kLevelNames[5] = {"NONE", "WEAK", "STRONG", "VERY_STRONG", "SUPER_STRONG"};
// Frames at the start of each estimation interval that may move the level.
constexpr int32_t kEstimationFrames = 6;

constexpr uint32_t kDenoiseFormats[] = {LF_I420, LF_YV12};

// Work and reference rows: the width rounded up to 16.
uint32_t WorkStride(uint32_t width) { return (width + 15) & ~15u; }

uint64_t PlanesBytes(uint32_t width, uint32_t height) {
  const uint64_t stride = WorkStride(width);
  return stride * height + 2 * (stride / 2) * (height / 2);
}

// Planes laid out one after another from `base`, rows of `stride` luma bytes.
DenoisePlanes PlanesAt(uint8_t* base, uint32_t stride, uint32_t height) {
  DenoisePlanes planes;
  planes.plane[0] = base;
  planes.plane[1] = base + static_cast<size_t>(stride) * height;
  planes.plane[2] = planes.plane[1] + static_cast<size_t>(stride / 2) * (height / 2);
  planes.stride[0] = stride;
  planes.stride[1] = planes.stride[2] = stride / 2;
  return planes;
}

}  // namespace

CDenoise::CDenoise(uint32_t cpuFeatures) : m_CPUFlag(cpuFeatures) {
  InitDenoiseKernels(&m_kernels, m_CPUFlag);
  SelectSpatialKernels();
  SetName("Denoise");
  CreateLogger();
}

void CDenoise::SelectSpatialKernels() {
  m_runKernels.luma = m_iCurrentLevel == kDenoiseSuperStrong ? m_kernels.spatialB : m_kernels.spatialA;
  m_runKernels.chroma = m_kernels.spatialA;
  m_runKernels.edge = m_kernels.edgeSmoother;
}

void CDenoise::ApplyLevel(int32_t level) {
  m_iConfiguredLevel = level;
  if (level == 0) {
    // Automatic mode starts weak and keeps its running average.
    m_iCurrentLevel = kDenoiseWeak;
  } else if (level >= kDenoiseWeak && level <= kDenoiseSuperStrong) {
    m_iCurrentLevel = level;
    m_iSmoothedLevel = level * 256;
  } else {
    m_iSmoothedLevel = m_iCurrentLevel * 256;
  }
  SelectSpatialKernels();
}

int32_t CDenoise::Init(void* config, uint8_t /*flag*/) {
  if (!config) return LF_INVALID_PARAMETER;
  DenoiseConfig c;
  std::memcpy(&c, config, sizeof(c));
  const uint32_t code = c.format & LF_FORMAT_CODE_MASK;
  if (code != LF_I420 && code != LF_YV12) return LF_UNSUPPORTED;
  // Buffers cut for another size would be read past their ends.
  if (c.width != m_uWidth || c.height != m_uHeight) FreeBuffers();
  m_uWidth = c.width;
  m_uHeight = c.height;
  if (c.level != m_iConfiguredLevel) ApplyLevel(c.level);
  m_iFrameIndex = 0;
  m_bInitialised = true;
  return LF_OK;
}

int32_t CDenoise::Uninit() {
  if (!m_bInitialised) return LF_OK;
  FreeBuffers();
  ResetTiming();
  m_iFrameIndex = 0;
  m_bInitialised = false;
  return LF_OK;
}

void CDenoise::FreeBuffers() {
  m_Reference.Free();
  m_WorkPlanes.Free();
  m_bHasReference = false;
  m_StaticMap = {};
}

int32_t CDenoise::SetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  int32_t v;
  std::memcpy(&v, value, sizeof(v));
  switch (id) {
    case LF_PARAM_DENOISE_LEVEL:
      if (v != m_iConfiguredLevel) ApplyLevel(v);
      break;
    case LF_PARAM_DENOISE_INTERVAL:
      if (v >= 1) m_iInterval = v;
      break;
    case LF_PARAM_DENOISE_RESTART: m_iFrameIndex = 0; break;
    case LF_PARAM_DENOISE_REINIT: {
      Uninit();
      DenoiseConfig c = {m_uWidth, m_uHeight, LF_I420, m_iConfiguredLevel};
      return Init(&c, 0);
    }
    default: break;
  }
  return LF_OK;
}

int32_t CDenoise::GetParam(ParamId id, void* value) {
  if (!value) return LF_INVALID_PARAMETER;
  if (id == LF_PARAM_DENOISE_CURRENT_LEVEL) std::memcpy(value, &m_iCurrentLevel, sizeof(int32_t));
  if (id == LF_PARAM_DENOISE_NOISE_ESTIMATE) std::memcpy(value, &m_iNoiseEstimate, sizeof(int32_t));
  AnswerTimePerFrame(id, value);
  return LF_OK;
}

void CDenoise::LogFrameTiming(TimingRecord* record) {
  if (!record || record->spare >= 5) return;
  if (static_cast<uint32_t>(m_iCurrentLevel) > record->spare) record->spare = static_cast<uint32_t>(m_iCurrentLevel);
  const int64_t now = NowMilliseconds();
  if (now - record->startMs <= LogIntervalMs()) return;
  if (m_pLogger) {
    m_pLogger->Info("%f ms per frame, maxNoiseLevel: %s",
                    static_cast<double>(record->accumulatedUs) / (static_cast<double>(record->frames) * 1000.0),
                    kLevelNames[record->spare]);
  }
  record->startMs = now;
  record->accumulatedUs = 0;
  record->frames = 0;
  record->spare = 0;
}

DenoisePlanes CDenoise::WorkPlanes(const VideoPicture& picture) {
  DenoisePlanes own;
  for (int k = 0; k < 3; ++k) {
    own.plane[k] = picture.planes[k];
    own.stride[k] = picture.strides[k];
  }
  if (reinterpret_cast<uintptr_t>(picture.planes[0]) % 16 == 0 && picture.strides[0] % 16 == 0) return own;
  const uint64_t bytes = PlanesBytes(m_uWidth, m_uHeight);
  uint8_t* base = bytes <= kMaxPlaneBytes ? m_WorkPlanes.Reserve(static_cast<uint32_t>(bytes)) : nullptr;
  if (!base) return DenoisePlanes{};
  const DenoisePlanes copy = PlanesAt(base, WorkStride(m_uWidth), m_uHeight);
  CopyPlanes(own, copy);
  return copy;
}

bool CDenoise::EnsureReference() {
  if (m_Reference.data()) return true;
  const uint32_t mapWidth = (m_uWidth + 15) / 16, mapHeight = (m_uHeight + 15) / 16;
  const uint64_t bytes = PlanesBytes(m_uWidth, m_uHeight) + uint64_t{mapWidth} * mapHeight;
  uint8_t* base = bytes <= kMaxPlaneBytes ? m_Reference.Reserve(static_cast<uint32_t>(bytes)) : nullptr;
  if (!base) return false;
  m_StaticMap = {base + PlanesBytes(m_uWidth, m_uHeight), static_cast<int32_t>(mapWidth),
                 static_cast<int32_t>(mapHeight)};
  m_bHasReference = false;
  return true;
}

void CDenoise::CopyPlanes(const DenoisePlanes& from, const DenoisePlanes& to) const {
  for (int k = 0; k < 3; ++k) {
    const uint32_t width = k == 0 ? m_uWidth : m_uWidth / 2, height = k == 0 ? m_uHeight : m_uHeight / 2;
    for (uint32_t y = 0; y < height; ++y)
      std::memcpy(to.plane[k] + y * to.stride[k], from.plane[k] + y * from.stride[k], width);
  }
}

bool CDenoise::UpdateLevel(const DenoisePlanes& work, bool& staleReference) {
  const auto width = static_cast<int32_t>(m_uWidth), height = static_cast<int32_t>(m_uHeight);
  const auto blocks = static_cast<uint32_t>(NoiseBlockCount(width, height));
  // Weights, then variances.
  auto* scratch = reinterpret_cast<int32_t*>(m_NoiseScratch.Reserve(2 * (blocks + 1) * sizeof(int32_t)));
  if (!scratch) return false;
  const DenoisePlanes reference = PlanesAt(m_Reference.data(), WorkStride(m_uWidth), m_uHeight);
  const int32_t e = EstimateNoise(m_kernels, work.plane[0], work.stride[0], reference.plane[0], reference.stride[0],
                                  width, height, scratch, scratch + blocks + 1);
  m_iNoiseEstimate = e;
  const int32_t target = e < 256 ? 128 : e < 512 ? 16512 : e < 2560 ? 32896 : e < 4096 ? 49280 : 65664;
  m_iSmoothedLevel = (m_iSmoothedLevel * 192 + target) >> 8;
  int32_t level;
  if (m_iSmoothedLevel >= 1024) {
    m_iSmoothedLevel = 1024;
    level = kDenoiseSuperStrong;
  } else {
    level = (m_iSmoothedLevel + 128) >> 8;
    level = level < kDenoiseSuperStrong ? level : kDenoiseSuperStrong;
  }
  if (level != m_iCurrentLevel) {
    if (m_iCurrentLevel == kDenoiseNone) {
      // Frames at level none never reached the reference: it is stale.
      std::memset(m_StaticMap.cells, 0, static_cast<size_t>(m_StaticMap.width) * m_StaticMap.height);
      staleReference = true;
    }
    m_iCurrentLevel = level;
    SelectSpatialKernels();
  }
  return true;
}

void CDenoise::SpatialPass(const DenoisePlanes& work, bool everyBlock) {
  const auto width = static_cast<int32_t>(m_uWidth), height = static_cast<int32_t>(m_uHeight);
  if (m_uPlaneMask & 1)
    LumaSpatialPass(m_runKernels, work.plane[0], work.stride[0], width, height, m_StaticMap, everyBlock);
  for (int k = 1; k < 3; ++k) {
    if (m_uPlaneMask & (1u << k))
      ChromaSpatialPass(m_runKernels, work.plane[k], work.stride[k], width / 2, height / 2, m_StaticMap, everyBlock);
  }
}

int32_t CDenoise::Process(VideoPicture* input, VideoPicture* /*output*/) {
  const int64_t startUs = NowMicroseconds();
  if (!m_bInitialised) return LF_PARAM_NOT_READY;
  if (!input) return LF_INVALID_PARAMETER;
  const uint32_t code = input->format & LF_FORMAT_CODE_MASK;
  if (code != LF_I420 && code != LF_YV12) return LF_UNSUPPORTED;
  if (!input->planes[0] || !input->planes[1] || !input->planes[2]) return LF_INVALID_PARAMETER;
  if (m_iConfiguredLevel == -1) {
    ++m_iFrameIndex;
    return LF_OK;
  }
  const int32_t phase = m_iFrameIndex % m_iInterval;
  if (phase >= kEstimationFrames && m_iCurrentLevel == kDenoiseNone) {
    ++m_iFrameIndex;
    return LF_OK;
  }
  // Empty pictures, rows shorter than the picture and planes past 2 GB are
  // refused before anything is read.
  const uint32_t width = input->width, height = input->height;
  if (!width || !height || input->strides[0] < width || input->strides[1] < width / 2 ||
      input->strides[2] < width / 2 || uint64_t{input->strides[0]} * height > kMaxPlaneBytes)
    return LF_INVALID_PARAMETER;
  if (width != m_uWidth || height != m_uHeight) {
    Uninit();
    DenoiseConfig c = {width, height, input->format, m_iConfiguredLevel};
    Init(&c, 0);
  }

  const DenoisePlanes work = WorkPlanes(*input);
  if (!work.plane[0]) return LF_SETUP_ALLOC_FAILED;
  const bool hadReference = m_bHasReference;
  if (!EnsureReference()) return LF_SETUP_ALLOC_FAILED;
  bool staleReference = !hadReference;
  if (m_iConfiguredLevel == 0 && phase < kEstimationFrames && hadReference) {
    if (!UpdateLevel(work, staleReference)) return LF_FAILED;
  }
  if (m_iCurrentLevel > kDenoiseNone) {
    const DenoisePlanes reference = PlanesAt(m_Reference.data(), WorkStride(m_uWidth), m_uHeight);
    const auto w = static_cast<int32_t>(width), h = static_cast<int32_t>(height);
    // At the weaker levels the temporal pass leads, and blocks it finds
    // static need no spatial pass; the stronger levels filter every block
    // first and then let the recursion average what stayed still.
    if (m_iCurrentLevel <= kDenoiseStrong) {
      if (!staleReference) TemporalPass(m_kernels, work, reference, w, h, m_StaticMap, m_iCurrentLevel);
      SpatialPass(work, false);
    } else {
      SpatialPass(work, true);
      if (!staleReference) TemporalPass(m_kernels, work, reference, w, h, m_StaticMap, m_iCurrentLevel);
    }
    CopyPlanes(work, reference);
    m_bHasReference = true;
    if (work.plane[0] != input->planes[0]) {
      DenoisePlanes own;
      for (int k = 0; k < 3; ++k) own.plane[k] = input->planes[k], own.stride[k] = input->strides[k];
      CopyPlanes(work, own);
    }
  }
  FinishFrameTiming(startUs);
  ++m_iFrameIndex;
  return LF_OK;
}

namespace {
constexpr ParamDescriptor kDenoiseParams[] = {
    {LF_PARAM_DENOISE_LEVEL, ParamType::kInt32, kParamSet, "level",
     "noise level: 0 automatic, 1..4 fixed (weak .. super strong), -1 pass pictures through", -1, 4},
    {LF_PARAM_DENOISE_INTERVAL, ParamType::kInt32, kParamSet, "interval",
     "frames between noise estimations in automatic mode (values below 1 are ignored)", 1, 1e9},
    {LF_PARAM_DENOISE_RESTART, ParamType::kInt32, kParamSet, "restart", "counts frames from 0 again", 0, 0},
    {LF_PARAM_DENOISE_REINIT, ParamType::kInt32, kParamSet, "reinit", "re-initialises the filter as I420", 0, 0},
    {LF_PARAM_DENOISE_CURRENT_LEVEL, ParamType::kInt32, kParamGet, "current", "the level in force", 0, 4},
    {LF_PARAM_DENOISE_NOISE_ESTIMATE, ParamType::kInt32, kParamGet, "estimate", "the last noise estimate", 0, 0}};
}  // namespace

extern const FilterDescriptor kDenoiseDescriptor = {LF_FILTER_DENOISE,      "Denoise",     "Create Denoise(%p)",
                                                    CreateFilter<CDenoise>, false,         FormatReading::kPlanes,
                                                    kDenoiseFormats,        kDenoiseParams};

}  // namespace Lumaforge
