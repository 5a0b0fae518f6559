#include "tests/kernels/kernel_harness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "framework/cpu_features.h"

namespace Lumaforge::test {
namespace {

constexpr int32_t kCanaryBytes = 32;  // around every row: wider than any vector
// Inputs and outputs use different canaries, so a kernel that reads past an
// input and stores what it read past an output is caught too.
constexpr uint8_t kOutputCanary = 0xA5;
constexpr uint8_t kInputCanary = 0x3C;
constexpr int32_t kMaxVectorBytes = 64;

// xorshift32: small, fast and identical on every platform.
uint32_t NextRandom(uint32_t& state) {
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return state;
}

uint8_t PatternByte(Pattern pattern, int32_t x, int32_t y, uint32_t& state) {
  switch (pattern) {
    case Pattern::kZero: return 0;
    case Pattern::kFull: return 255;
    case Pattern::kAlternating: return ((x + y) & 1) ? 255 : 0;
    case Pattern::kRamp: return static_cast<uint8_t>(x + 3 * y);
    case Pattern::kRandom: break;
  }
  return static_cast<uint8_t>(NextRandom(state) >> 24);
}

const char* PatternName(Pattern pattern) {
  switch (pattern) {
    case Pattern::kZero: return "zero";
    case Pattern::kFull: return "full";
    case Pattern::kAlternating: return "alternating";
    case Pattern::kRamp: return "ramp";
    case Pattern::kRandom: break;
  }
  return "random";
}

std::vector<std::unique_ptr<FamilyBase>>& Registry() {
  static std::vector<std::unique_ptr<FamilyBase>> families;
  return families;
}

bool Selected(const HarnessOptions& options, const FamilyBase& family, size_t entry) {
  return (family.Name() + "." + family.EntryName(entry)).find(options.filter) != std::string::npos;
}

// Widths 1 .. three 64-byte vectors plus one, then a few picture widths.
std::vector<int32_t> CheckWidths(const ShapeRules& rules) {
  std::vector<int32_t> widths;
  for (int32_t w = 1; w <= 3 * kMaxVectorBytes + 1; ++w) widths.push_back(w);
  for (int32_t w : {255, 256, 257, 641, 1279, 1280, 1921}) widths.push_back(w);
  std::vector<int32_t> allowed;
  for (int32_t w : widths) {
    if (w % rules.widthMultiple == 0) allowed.push_back(w);
  }
  return allowed;
}

std::vector<Shape> CheckShapes(const ShapeRules& rules, uint32_t seed) {
  std::vector<Shape> shapes;
  for (int32_t w : CheckWidths(rules)) {
    for (int32_t h = rules.heightMultiple; h <= rules.maxHeight; h += rules.heightMultiple) {
      Shape s;
      s.width = w;
      s.height = h;
      s.stridePad = (w * 7 + h) % 19;
      s.misalign = (w + h) % 16 / rules.misalignMultiple * rules.misalignMultiple;
      s.seed = seed ^ (static_cast<uint32_t>(w) * 2654435761u) ^ (static_cast<uint32_t>(h) << 24) ^ 1u;
      shapes.push_back(s);
    }
  }
  // Extreme contents at the sizes around vector widths.
  for (Pattern p : {Pattern::kZero, Pattern::kFull, Pattern::kAlternating, Pattern::kRamp}) {
    for (int32_t w : {1, 15, 16, 17, 31, 32, 33, 63, 64, 65, 193}) {
      if (w % rules.widthMultiple) continue;
      Shape s;
      s.width = w;
      s.height = rules.maxHeight - rules.maxHeight % rules.heightMultiple;
      s.stridePad = 3;
      s.pattern = p;
      shapes.push_back(s);
    }
  }
  return shapes;
}

std::string Describe(const FamilyBase& family, size_t entry, const Level& level, const Shape& s) {
  char text[256];
  std::snprintf(text, sizeof(text), "%s.%s at %s, width %d height %d stride pad %d misalign %d pattern %s seed %u",
                family.Name().c_str(), family.EntryName(entry).c_str(), level.name, s.width, s.height, s.stridePad,
                s.misalign, PatternName(s.pattern), s.seed);
  return text;
}

// Offset of the first byte that is not the canary outside the rows of
// `plane`, or -1.
ptrdiff_t FirstDamagedCanary(const Plane& plane) {
  const std::vector<uint8_t>& data = plane.Storage();
  const uint8_t* base = data.data();
  const uint8_t* first = plane.Row(0);
  const uint8_t* end = plane.Row(plane.Rows() - 1) + plane.RowBytes();
  for (const uint8_t* p = base; p < base + data.size(); ++p) {
    if (p >= first && p < end && (p - first) % plane.Stride() < plane.RowBytes()) {
      continue;  // inside a row
    }
    if (*p != kOutputCanary) return p - base;
  }
  return -1;
}

bool CompareOutputs(Buffers& expected, Buffers& actual, std::string& failure) {
  for (size_t i = 0; i < expected.Count(); ++i) {
    Plane& ref = expected[i];
    Plane& got = actual[i];
    if (!ref.IsOutput()) continue;
    for (int32_t y = 0; y < ref.Rows(); ++y) {
      const uint8_t* a = ref.Row(y);
      const uint8_t* b = got.Row(y);
      for (int32_t x = 0; x < ref.RowBytes(); ++x) {
        if (a[x] != b[x]) {
          char text[160];
          std::snprintf(text, sizeof(text), "output '%s' differs at byte %d of row %d: plain %u, variant %u",
                        expected.Name(i).c_str(), x, y, a[x], b[x]);
          failure = text;
          return false;
        }
      }
    }
  }
  return true;
}

bool CheckIntegrity(Buffers& buffers, const std::vector<std::vector<uint8_t>>& pristineInputs, const char* who,
                    std::string& failure) {
  for (size_t i = 0; i < buffers.Count(); ++i) {
    Plane& plane = buffers[i];
    char text[160];
    if (!plane.IsOutput()) {
      if (plane.Storage() != pristineInputs[i]) {
        std::snprintf(text, sizeof(text), "%s changed input '%s'", who, buffers.Name(i).c_str());
        failure = text;
        return false;
      }
      continue;
    }
    const ptrdiff_t damaged = FirstDamagedCanary(plane);
    if (damaged >= 0) {
      std::snprintf(text, sizeof(text), "%s wrote outside output '%s' (storage offset %td)", who,
                    buffers.Name(i).c_str(), damaged);
      failure = text;
      return false;
    }
  }
  return true;
}

std::vector<std::vector<uint8_t>> SnapshotInputs(Buffers& buffers) {
  std::vector<std::vector<uint8_t>> copies(buffers.Count());
  for (size_t i = 0; i < buffers.Count(); ++i) {
    if (!buffers[i].IsOutput()) copies[i] = buffers[i].Storage();
  }
  return copies;
}

}  // namespace

Plane::Plane(int32_t rowBytes, int32_t rows, const Shape& shape, bool isOutput)
    : m_rowBytes(rowBytes), m_rows(rows), m_stride(rowBytes + shape.stridePad + 2 * kCanaryBytes), m_bOutput(isOutput) {
  const size_t size = static_cast<size_t>(m_stride) * (rows + 2) + 2 * kMaxVectorBytes;
  m_data.assign(size, isOutput ? kOutputCanary : kInputCanary);
  // Place row 0 `misalign` bytes past a 64-byte boundary, one canary row down.
  const uintptr_t base = reinterpret_cast<uintptr_t>(m_data.data()) + m_stride + kCanaryBytes;
  const uintptr_t aligned = (base + kMaxVectorBytes - 1) & ~uintptr_t{kMaxVectorBytes - 1};
  m_start = aligned - reinterpret_cast<uintptr_t>(m_data.data()) + shape.misalign;
}

void Buffers::Fill(Plane& plane) {
  m_uFillState = m_shape.seed * 2 + 1 + static_cast<uint32_t>(m_planes.size()) * 0x9E3779B9u;
  if (m_uFillState == 0) m_uFillState = 1;
  for (int32_t y = 0; y < plane.Rows(); ++y) {
    uint8_t* row = plane.Row(y);
    for (int32_t x = 0; x < plane.RowBytes(); ++x) row[x] = PatternByte(m_shape.pattern, x, y, m_uFillState);
  }
}

Plane& Buffers::AddInput(const std::string& name, int32_t rowBytes, int32_t rows) {
  m_planes.push_back({name, std::make_unique<Plane>(rowBytes, rows, m_shape, false)});
  Fill(*m_planes.back().plane);
  return *m_planes.back().plane;
}

Plane& Buffers::AddOutput(const std::string& name, int32_t rowBytes, int32_t rows) {
  m_planes.push_back({name, std::make_unique<Plane>(rowBytes, rows, m_shape, true)});
  return *m_planes.back().plane;
}

Plane& Buffers::AddInOut(const std::string& name, int32_t rowBytes, int32_t rows) {
  m_planes.push_back({name, std::make_unique<Plane>(rowBytes, rows, m_shape, true)});
  Fill(*m_planes.back().plane);
  return *m_planes.back().plane;
}

void RegisterFamily(std::unique_ptr<FamilyBase> family) { Registry().push_back(std::move(family)); }

const std::vector<std::unique_ptr<FamilyBase>>& RegisteredFamilies() { return Registry(); }

const std::vector<Level>& Levels() {
  static const std::vector<Level> levels = [] {
    // Every bit some family selects on, in the order processors gained them.
    const Level steps[] = {{"sse", kCpuSSE},     {"sse2", kCpuSSE2}, {"ssse3", kCpuSSSE3}, {"sse41", kCpuSSE41},
                           {"sse42", kCpuSSE42}, {"avx", kCpuAVX},   {"avx2", kCpuAVX2}};
    std::vector<Level> result = {{"c", 0}};
    uint32_t features = 0;
    for (const Level& step : steps) {
      features |= step.features;
      result.push_back({step.name, features});
    }
    return result;
  }();
  return levels;
}

int RunChecks(const HarnessOptions& options) {
  size_t checkedEntries = 0, checkedShapes = 0;
  for (const auto& family : RegisteredFamilies()) {
    for (size_t entry = 0; entry < family->EntryCount(); ++entry) {
      if (!Selected(options, *family, entry)) continue;
      const std::vector<Shape> shapes = CheckShapes(family->Rules(entry), options.seed);
      for (size_t l = 1; l < Levels().size(); ++l) {
        const Level& level = Levels()[l];
        if ((options.cpuFeatures & level.features) != level.features) break;
        if (!family->Changed(entry, Levels()[l - 1].features, level.features)) continue;
        ++checkedEntries;
        for (const Shape& shape : shapes) {
          Buffers expected(shape), actual(shape);
          family->Prepare(entry, shape, expected);
          family->Prepare(entry, shape, actual);
          const auto expectedInputs = SnapshotInputs(expected);
          const auto actualInputs = SnapshotInputs(actual);
          family->Call(entry, 0, expected);
          family->Call(entry, level.features, actual);
          std::string failure;
          if (!CheckIntegrity(expected, expectedInputs, "plain routine", failure) ||
              !CheckIntegrity(actual, actualInputs, "variant", failure) || !CompareOutputs(expected, actual, failure)) {
            std::printf("FAIL %s: %s\n", Describe(*family, entry, level, shape).c_str(), failure.c_str());
            return 1;
          }
          ++checkedShapes;
        }
        std::printf("ok   %s.%s at %s (%zu shapes)\n", family->Name().c_str(), family->EntryName(entry).c_str(),
                    level.name, shapes.size());
      }
    }
  }
  std::printf("%zu variants checked on %zu shapes, seed %u\n", checkedEntries, checkedShapes, options.seed);
  return 0;
}

void RunBenchmarks(const HarnessOptions& options) {
  using Clock = std::chrono::steady_clock;
  // Best of several batches of roughly 20 ms each: robust against a busy machine.
  auto timePerCall = [](const FamilyBase& family, size_t entry, uint32_t features, Buffers& buffers) {
    int32_t calls = 1;
    double best = 1e30;
    for (int batch = 0; batch < 7; ++batch) {
      const auto start = Clock::now();
      for (int32_t i = 0; i < calls; ++i) family.Call(entry, features, buffers);
      const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
      best = std::min(best, seconds / calls);
      if (seconds < 0.02) calls = std::max(calls * 2, static_cast<int32_t>(0.02 / (seconds / calls + 1e-12)));
    }
    return best;
  };
  std::printf("%-40s %-6s %12s %9s\n", "kernel", "level", "us/call", "speed-up");
  for (const auto& family : RegisteredFamilies()) {
    for (size_t entry = 0; entry < family->EntryCount(); ++entry) {
      if (!Selected(options, *family, entry)) continue;
      const ShapeRules& rules = family->Rules(entry);
      Shape shape;
      shape.width = rules.benchWidth;
      shape.height = rules.benchHeight;
      shape.seed = options.seed | 1;
      Buffers buffers(shape);
      family->Prepare(entry, shape, buffers);
      const std::string name = family->Name() + "." + family->EntryName(entry);
      const double plain = timePerCall(*family, entry, 0, buffers);
      std::printf("%-40s %-6s %12.2f %9s\n", name.c_str(), "c", plain * 1e6, "1.00");
      for (size_t l = 1; l < Levels().size(); ++l) {
        const Level& level = Levels()[l];
        if ((options.cpuFeatures & level.features) != level.features) break;
        if (!family->Changed(entry, Levels()[l - 1].features, level.features)) continue;
        const double variant = timePerCall(*family, entry, level.features, buffers);
        std::printf("%-40s %-6s %12.2f %8.2fx\n", name.c_str(), level.name, variant * 1e6, plain / variant);
      }
    }
  }
}

}  // namespace Lumaforge::test
