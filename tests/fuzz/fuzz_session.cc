#include "tests/fuzz/fuzz_session.h"

#include <cstdlib>
#include <cstring>
#if defined(_WIN32)
#include <malloc.h>
#endif

#include "framework/plane_layout.h"
#include "tests/environment.h"
#include "tools/cpu_level_masks.h"

namespace Lumaforge::test {

std::vector<FuzzTerms (*)()>& RegisteredFuzzTerms() {
  static std::vector<FuzzTerms (*)()> makers;
  return makers;
}

std::vector<FuzzTerms> AllFuzzTerms() {
  std::vector<FuzzTerms> all;
  for (const FilterDescriptor* descriptor : FilterList()) {
    bool found = false;
    for (FuzzTerms (*make)() : RegisteredFuzzTerms()) {
      FuzzTerms terms = make();
      if (terms.type != descriptor->type) continue;
      all.push_back(std::move(terms));
      found = true;
    }
    if (!found) std::abort();  // a filter without fuzz terms
  }
  return all;
}

std::vector<const char*> AvailableCpuMasks() {
  UnsetEnv("LUMAFORGE_CPU_MASK");
  const int32_t available = GetLumaforgeArch();
  std::vector<const char*> masks;
  for (const CpuLevel& level : kCpuLevels) {
    if (level.tier <= available) masks.push_back(level.mask);
  }
  return masks;
}

namespace {

// Planes of a record as the filter reads its format; a code the reading
// does not know gets three full-size byte planes, so even a record the
// filter refuses has real memory behind every pointer.
PlaneLayout PlanesOf(const RecordShape& shape, FormatReading reading) {
  PlaneLayout layout = LayoutOf(shape.format, reading, shape.width, shape.height);
  if (layout.Known()) return layout;
  layout = LayoutOf(LF_RGBP, FormatReading::kPlanes, shape.width, shape.height);
  return layout;
}

// Heap blocks starting on `alignment` bytes (a power of two), of `size`
// rounded up to it.
void* AlignedBlock(size_t alignment, size_t size) {
  size = (size + alignment - 1) / alignment * alignment;
#if defined(_WIN32)
  return _aligned_malloc(size, alignment);
#else
  return std::aligned_alloc(alignment, size);
#endif
}
void FreeAlignedBlock(void* block) {
#if defined(_WIN32)
  _aligned_free(block);
#else
  std::free(block);
#endif
}

// A picture whose planes are separate heap blocks of exactly stride x rows
// bytes (plus the chosen start offset), freed with the picture. With an
// alignment above 1 the blocks start on it and the offset is rounded up to
// a multiple of it.
class HeapPicture {
 public:
  HeapPicture(const RecordShape& planes, const RecordShape& stated, FormatReading reading, uint32_t pad,
              uint32_t offset, uint8_t seed, uint32_t alignment) {
    offset = (offset + alignment - 1) / alignment * alignment;
    aligned_ = alignment > 1;
    std::memset(&record, 0, sizeof(record));
    record.format = stated.format;
    record.width = stated.width;
    record.height = stated.height;
    const PlaneLayout layout = PlanesOf(planes, reading);
    for (int32_t k = 0; k < layout.planes; ++k) {
      const uint64_t stride = layout.plane[k].rowBytes + pad;
      const size_t bytes = static_cast<size_t>(stride * layout.plane[k].height);
      // malloc(0) may answer null; a plane of no bytes still gets a block.
      const size_t size = offset + bytes + (offset + bytes == 0);
      blocks_[k] = static_cast<uint8_t*>(alignment > 1 ? AlignedBlock(alignment, size) : std::malloc(size));
      if (!blocks_[k]) std::abort();
      record.planes[k] = blocks_[k] + offset;
      record.strides[k] = static_cast<uint32_t>(stride);
      for (size_t i = 0; i < bytes; ++i) record.planes[k][i] = static_cast<uint8_t>(seed + i * 131 + (i >> 7));
    }
  }
  ~HeapPicture() {
    for (uint8_t* block : blocks_) {
      if (aligned_) {
        FreeAlignedBlock(block);
      } else {
        std::free(block);
      }
    }
  }
  HeapPicture(const HeapPicture&) = delete;
  HeapPicture& operator=(const HeapPicture&) = delete;

  VideoPicture record;

 private:
  uint8_t* blocks_[3] = {};
  bool aligned_ = false;
};

// Reads every byte a record says it holds, so that a record pointing at
// freed or foreign memory is caught where the host would use it.
uint32_t ReadRecord(const VideoPicture& record, uint32_t formatIfZero, FormatReading reading) {
  const uint32_t format = record.format ? record.format : formatIfZero;
  const PlaneLayout layout = LayoutOf(format, reading, record.width, record.height);
  uint32_t sum = 0;
  for (int32_t k = 0; k < layout.planes; ++k) {
    if (!record.planes[k]) continue;
    for (uint32_t y = 0; y < layout.plane[k].height; ++y) {
      const uint8_t* row = record.planes[k] + static_cast<size_t>(y) * record.strides[k];
      for (uint64_t x = 0; x < layout.plane[k].rowBytes; ++x) sum += row[x];
    }
  }
  return sum;
}

void Huge(VideoPicture& p) {
  p.width = 1u << 30;
  p.height = 1u << 31;
  for (uint32_t& stride : p.strides) stride = 1u << 31;
}

// Any other format code, with or without the bottom-up flag.
uint32_t OtherFormat(uint32_t format, uint8_t choice) {
  const uint32_t code = 1 + (format + 1 + choice % 30) % 31;
  return code | (choice & 0x80 ? LF_FORMAT_BOTTOM_UP : 0);
}

void ApplySpoil(const FuzzTerms& terms, const FrameChoice& f, VideoPicture*& in, VideoPicture*& out) {
  const int k = f.spoiledPlane % 3;
  switch (f.spoil) {
    case Spoil::kNone: break;
    case Spoil::kNoInputRecord: in = nullptr; break;
    case Spoil::kNoOutputRecord: out = nullptr; break;
    case Spoil::kNoInputPlane: in->planes[k] = nullptr; break;
    case Spoil::kShortInputStride:
      in->strides[k] = in->strides[k] ? in->strides[k] - 1 - f.seed % in->strides[k] : 0;
      break;
    case Spoil::kHugeInput: Huge(*in); break;
    case Spoil::kNoOutputPlane:
      if (terms.checksOutput) out->planes[k] = nullptr;
      break;
    case Spoil::kShortOutputStride:
      if (terms.checksOutput && out->strides[k]) out->strides[k] -= 1 + f.seed % out->strides[k];
      break;
    case Spoil::kHugeOutput:
      if (terms.checksOutput) Huge(*out);
      break;
    case Spoil::kOtherOutputFormat:
      if (terms.checksOutputFormat) out->format = OtherFormat(out->format, f.seed);
      break;
    case Spoil::kCount: break;
  }
}

int LogSink(uint64_t /*userValue*/, int32_t /*level*/, const char* text) {
  volatile size_t length = std::strlen(text);
  (void)length;
  return 0;
}

// A picture side: mostly 0 .. 129, now and then up to about 700.
uint32_t ChooseSide(ByteSource& choose) {
  const uint8_t b = choose.Byte();
  return b < 208 ? b % 130 : 130 + (b - 208) * 12 + choose.Below(12);
}

// Bytes of a parameter value of `type`.
uint32_t ValueBytes(ParamType type, uint32_t recordBytes = 0) {
  switch (type) {
    case ParamType::kInt32:
    case ParamType::kUint32:
    case ParamType::kFloat: return 4;
    case ParamType::kUint64:
    case ParamType::kDouble: return 8;
    case ParamType::kRecord: return recordBytes;
  }
  return 8;
}

}  // namespace

FuzzSession::FuzzSession(RecordMode mode) : mode_(mode) {
  if (CreateLumaforge(&lf_) != LF_OK || !lf_) std::abort();
  // Every log line goes to a sink that reads it; silent until a level is chosen.
  const uint64_t sink = reinterpret_cast<uint64_t>(&LogSink);
  const int32_t silent = -1;
  lf_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_CALLBACK, const_cast<uint64_t*>(&sink));
  lf_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, const_cast<int32_t*>(&silent));
}

FuzzSession::~FuzzSession() { DestroyLumaforge(lf_); }

int32_t FuzzSession::Init(const FuzzTerms& terms, ByteSource& choose, uint8_t flag, const RecordShape& frame) {
  std::vector<uint8_t>& config = configs_[terms.type];
  config = terms.config(choose, frame);
  // A smaller vector keeps its old block; a host's record is its own block.
  config.shrink_to_fit();
  flags_[terms.type] = flag;
  const int32_t status = lf_->Init(terms.type, config.empty() ? nullptr : config.data(), flag);
  if (terms.afterInit) terms.afterInit(lf_);
  return status;
}

FrameChoice FuzzSession::ChooseFrame(const FuzzTerms& terms, const FilterDescriptor& descriptor,
                                     ByteSource& choose) const {
  FrameChoice f;
  const uint8_t formatChoice = choose.Byte();
  const uint32_t code = formatChoice & 3
                            ? descriptor.formats[choose.Below(static_cast<uint32_t>(descriptor.formats.size()))]
                            : choose.Below(33);
  f.input = {code | (formatChoice & 4 ? LF_FORMAT_BOTTOM_UP : 0), ChooseSide(choose), ChooseSide(choose)};
  const std::vector<OutputChoice> outputs = terms.outputs(f.input);
  f.output = outputs[choose.Below(static_cast<uint32_t>(outputs.size()))];
  if (!terms.rowsByWidth) {
    f.inPad = choose.Below(4) ? choose.Below(40) : 0;
    f.outPad = choose.Below(4) ? choose.Below(40) : 0;
  }
  f.inOffset = choose.Below(4) ? 0 : choose.Below(33);
  f.outOffset = choose.Below(4) ? 0 : choose.Below(33);
  if (mode_ == RecordMode::kBad) {
    f.spoil = static_cast<Spoil>(choose.Below(static_cast<uint32_t>(Spoil::kCount)));
    f.spoiledPlane = choose.Byte();
  }
  f.seed = choose.Byte();
  return f;
}

int32_t FuzzSession::Process(const FuzzTerms& terms, const FrameChoice& f, ByteSource& choose) {
  const FilterDescriptor& descriptor = *FindFilterDescriptor(terms.type);
  // The record a filter keeps a pointer to lives until the next frame's.
  if (terms.configPerFrame) Init(terms, choose, flags_[terms.type], f.output.stated);
  HeapPicture in(f.input, f.input, descriptor.reading, f.inPad, f.inOffset, f.seed, terms.planeAlignment);
  HeapPicture out(f.output.planes, f.output.stated, descriptor.reading, f.outPad, f.outOffset, f.seed ^ 0x5A,
                  terms.planeAlignment);
  std::vector<uint8_t> qpMap;
  if (terms.readsQpMap && f.seed & 1) {
    qpMap.assign(size_t{(f.input.width + 15) / 16} * ((f.input.height + 15) / 16), static_cast<uint8_t>(f.seed % 52));
    qpMap.shrink_to_fit();
    in.record.qpMap = qpMap.data();
  }
  VideoPicture* inRecord = &in.record;
  VideoPicture* outRecord = &out.record;
  ApplySpoil(terms, f, inRecord, outRecord);
  const int32_t status = lf_->Process(terms.type, inRecord, outRecord);
  if (status == LF_OK && f.spoil == Spoil::kNone) {
    volatile uint32_t sum = ReadRecord(out.record, f.input.format, descriptor.reading);
    (void)sum;
  }
  return status;
}

void FuzzSession::SetParam(const FuzzTerms* terms, ByteSource& choose) {
  const int32_t type = terms ? terms->type : LF_FILTER_ALL;
  const uint8_t which = choose.Byte();
  std::vector<uint8_t> value;
  ParamId id;
  const FilterDescriptor* descriptor = terms ? FindFilterDescriptor(type) : nullptr;
  if (descriptor && !descriptor->params.empty() && which % 4 == 0) {
    const ParamDescriptor& p = descriptor->params[choose.Below(static_cast<uint32_t>(descriptor->params.size()))];
    id = p.id;
    if (p.type == ParamType::kRecord) {
      value = terms->config(choose, {});
    } else {
      value.resize(ValueBytes(p.type));
      for (uint8_t& byte : value) byte = choose.Byte();
    }
  } else if (which % 4 == 1) {
    id = LF_PARAM_LOG_LEVEL;
    const int32_t level = static_cast<int32_t>(choose.Below(6)) - 1;
    value = BytesOf(level);
  } else if (which % 4 == 2) {
    // 0 keeps the current callback; any other value would be called.
    id = LF_PARAM_LOG_CALLBACK;
    const uint64_t callback = choose.Byte() & 1 ? reinterpret_cast<uint64_t>(&LogSink) : 0;
    value = BytesOf(callback);
  } else {
    id = choose.Byte() & 1 ? LF_PARAM_TIMING_INTERVAL : LF_PARAM_LOG_USER_VALUE;
    value.resize(id == LF_PARAM_TIMING_INTERVAL ? 4 : 8);
    for (uint8_t& byte : value) byte = choose.Byte();
  }
  const bool nullValue = mode_ == RecordMode::kBad && choose.Below(4) == 0;
  lf_->SetParam(type, id, nullValue ? nullptr : value.data());
}

void FuzzSession::GetParam(const FuzzTerms* terms, ByteSource& choose) {
  const int32_t type = terms ? terms->type : LF_FILTER_ALL;
  ParamId id = LF_PARAM_TIME_PER_FRAME;
  uint32_t bytes = 8;
  const FilterDescriptor* descriptor = terms ? FindFilterDescriptor(type) : nullptr;
  if (descriptor && !descriptor->params.empty() && choose.Byte() & 1) {
    const ParamDescriptor& p = descriptor->params[choose.Below(static_cast<uint32_t>(descriptor->params.size()))];
    if (p.access & kParamGet) {
      id = p.id;
      bytes = ValueBytes(p.type, static_cast<uint32_t>(terms->config(choose, {}).size()));
    }
  }
  std::vector<uint8_t> value(bytes);
  const bool nullValue = mode_ == RecordMode::kBad && choose.Below(4) == 0;
  lf_->GetParam(type, id, nullValue ? nullptr : value.data());
}

void FuzzSession::RunChoices(ByteSource& choose) {
  static const std::vector<FuzzTerms> kTerms = AllFuzzTerms();
  static const std::vector<const char*> kMasks = AvailableCpuMasks();
  // Filters take the processor level when they are created, on first Init.
  SetEnv("LUMAFORGE_CPU_MASK", kMasks[choose.Byte() % kMasks.size()]);
  const int32_t logLevel = static_cast<int32_t>(choose.Below(6)) - 1;
  lf_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, const_cast<int32_t*>(&logLevel));
  const uint32_t calls = 1 + choose.Below(12);
  for (uint32_t c = 0; c < calls && !choose.Empty(); ++c) {
    const uint8_t kind = choose.Byte();
    const uint32_t pick = choose.Below(static_cast<uint32_t>(kTerms.size()) + 1);
    const FuzzTerms* terms = pick < kTerms.size() ? &kTerms[pick] : nullptr;
    // Calls on a type without a filter: refused, whatever they carry.
    if (!terms) {
      const int32_t badTypes[] = {-1, 0, 2, kMaxFilterType, kMaxFilterType + 1, 1000};
      const int32_t type = badTypes[choose.Below(6)];
      lf_->Process(type, nullptr, nullptr);
      lf_->Init(type, nullptr, 0);
      lf_->Uninit(type);
      if (kind & 1) SetParam(nullptr, choose);
      continue;
    }
    const FilterDescriptor& descriptor = *FindFilterDescriptor(terms->type);
    switch (kind % 8) {
      case 0: {
        const uint8_t flag = terms->flags[choose.Below(static_cast<uint32_t>(terms->flags.size()))];
        Init(*terms, choose, flag, {descriptor.formats[0], ChooseSide(choose), ChooseSide(choose)});
        break;
      }
      case 5: SetParam(terms, choose); break;
      case 6: GetParam(terms, choose); break;
      case 7: lf_->Uninit(terms->type); break;
      default: {
        // Most calls are frames; a filter never initialised is initialised
        // first more often than not, as a host would.
        if (!configs_.count(terms->type) && choose.Below(4)) {
          Init(*terms, choose, terms->flags.back(), {descriptor.formats[0], 64, 64});
        }
        Process(*terms, ChooseFrame(*terms, descriptor, choose), choose);
        break;
      }
    }
  }
}

}  // namespace Lumaforge::test
