// Checks every SIMD variant of every registered kernel family against the
// family's plain routine, byte for byte, and times them in benchmark mode.
//
// A family registers its table type, its init function and one entry per
// table slot. An entry says how to prepare the buffers for a shape and how
// to call one kernel on them; the harness does the rest: it climbs the
// instruction-set ladder, picks the entries a level changed, runs the plain
// and the candidate kernel on identical inputs over many shapes, and compares
// every output byte, the canary bytes around each output and the inputs.
#ifndef LUMAFORGE_TESTS_KERNELS_KERNEL_HARNESS_H_
#define LUMAFORGE_TESTS_KERNELS_KERNEL_HARNESS_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Lumaforge::test {

enum class Pattern { kRandom, kZero, kFull, kAlternating, kRamp };

// One geometry to run a kernel on. Kernels interpret width and height in
// their own units (samples, pixels, pairs).
struct Shape {
  int32_t width = 0;
  int32_t height = 0;
  int32_t stridePad = 0;  // bytes added to every row stride
  int32_t misalign = 0;   // bytes the first row starts past a 64-byte boundary
  Pattern pattern = Pattern::kRandom;
  uint32_t seed = 0;
};

// A plane of bytes with canary margins on both sides of every row and above
// and below the plane.
class Plane {
 public:
  Plane(int32_t rowBytes, int32_t rows, const Shape& shape, bool isOutput);
  uint8_t* Row(int32_t y) { return m_data.data() + Offset(y); }
  const uint8_t* Row(int32_t y) const { return m_data.data() + Offset(y); }
  int32_t Stride() const { return m_stride; }
  int32_t RowBytes() const { return m_rowBytes; }
  int32_t Rows() const { return m_rows; }
  bool IsOutput() const { return m_bOutput; }
  const std::vector<uint8_t>& Storage() const { return m_data; }

 private:
  size_t Offset(int32_t y) const { return m_start + static_cast<size_t>(y) * m_stride; }
  int32_t m_rowBytes, m_rows, m_stride;
  size_t m_start = 0;
  bool m_bOutput;
  std::vector<uint8_t> m_data;
};

// The planes one kernel call reads and writes, filled from the shape's
// pattern and seed so that two sets built from one shape are identical.
class Buffers {
 public:
  explicit Buffers(const Shape& shape) : m_shape(shape) {}
  Plane& AddInput(const std::string& name, int32_t rowBytes, int32_t rows);
  Plane& AddOutput(const std::string& name, int32_t rowBytes, int32_t rows);
  // A plane the kernel reads and rewrites in place: filled like an input,
  // compared like an output.
  Plane& AddInOut(const std::string& name, int32_t rowBytes, int32_t rows);
  Plane& operator[](size_t index) { return *m_planes[index].plane; }
  size_t Count() const { return m_planes.size(); }
  const std::string& Name(size_t index) const { return m_planes[index].name; }
  const Shape& GetShape() const { return m_shape; }

 private:
  struct Named {
    std::string name;
    std::unique_ptr<Plane> plane;
  };
  void Fill(Plane& plane);
  Shape m_shape;
  uint32_t m_uFillState = 0;
  std::vector<Named> m_planes;
};

// Constraints on the shapes an entry accepts.
struct ShapeRules {
  int32_t widthMultiple = 1;
  int32_t heightMultiple = 1;
  int32_t maxHeight = 4;         // harness heights run 1..maxHeight (respecting the multiple)
  int32_t misalignMultiple = 1;  // 4 for kernels that read or write floats in their planes
  int32_t benchWidth = 1920;     // the shape benchmark mode times
  int32_t benchHeight = 1080;
};

// One table slot, type-erased over the family's table.
template <typename Table>
struct KernelEntry {
  std::string name;
  std::function<bool(const Table&, const Table&)> differs;
  std::function<void(const Shape&, Buffers&)> prepare;
  std::function<void(const Table&, Buffers&)> call;
  ShapeRules rules;
};

// Builds an entry for the slot `member`; `call` receives the slot's kernel.
template <typename Table, typename Fn>
KernelEntry<Table> Entry(std::string name, Fn Table::*member, std::function<void(const Shape&, Buffers&)> prepare,
                         std::function<void(Fn, Buffers&)> call, ShapeRules rules = {}) {
  return {std::move(name), [member](const Table& a, const Table& b) { return a.*member != b.*member; },
          std::move(prepare), [member, call](const Table& t, Buffers& b) { call(t.*member, b); }, rules};
}

// What a family looks like to the harness after type erasure.
class FamilyBase {
 public:
  virtual ~FamilyBase() = default;
  virtual const std::string& Name() const = 0;
  virtual size_t EntryCount() const = 0;
  virtual const std::string& EntryName(size_t entry) const = 0;
  virtual const ShapeRules& Rules(size_t entry) const = 0;
  // Whether the table for `features` uses another kernel than for `previous`.
  virtual bool Changed(size_t entry, uint32_t previous, uint32_t features) const = 0;
  virtual void Prepare(size_t entry, const Shape& shape, Buffers& buffers) const = 0;
  virtual void Call(size_t entry, uint32_t features, Buffers& buffers) const = 0;
};

template <typename Table>
class Family : public FamilyBase {
 public:
  using InitFn = void (*)(Table*, uint32_t);
  Family(std::string name, InitFn init, std::vector<KernelEntry<Table>> entries)
      : m_name(std::move(name)), m_init(init), m_entries(std::move(entries)) {}
  const std::string& Name() const override { return m_name; }
  size_t EntryCount() const override { return m_entries.size(); }
  const std::string& EntryName(size_t entry) const override { return m_entries[entry].name; }
  const ShapeRules& Rules(size_t entry) const override { return m_entries[entry].rules; }
  bool Changed(size_t entry, uint32_t previous, uint32_t features) const override {
    return m_entries[entry].differs(TableFor(previous), TableFor(features));
  }
  void Prepare(size_t entry, const Shape& shape, Buffers& buffers) const override {
    m_entries[entry].prepare(shape, buffers);
  }
  void Call(size_t entry, uint32_t features, Buffers& buffers) const override {
    m_entries[entry].call(TableFor(features), buffers);
  }

 private:
  Table TableFor(uint32_t features) const {
    Table table{};
    m_init(&table, features);
    return table;
  }
  std::string m_name;
  InitFn m_init;
  std::vector<KernelEntry<Table>> m_entries;
};

// Families register themselves from static initialisers in their own files.
void RegisterFamily(std::unique_ptr<FamilyBase> family);
const std::vector<std::unique_ptr<FamilyBase>>& RegisteredFamilies();

template <typename Table>
struct FamilyRegistration {
  FamilyRegistration(std::string name, void (*init)(Table*, uint32_t), std::vector<KernelEntry<Table>> entries) {
    RegisterFamily(std::make_unique<Family<Table>>(std::move(name), init, std::move(entries)));
  }
};

// An instruction-set level of the ladder and the feature word that reaches it.
struct Level {
  const char* name;
  uint32_t features;  // cumulative: every lower level's bit included
};
const std::vector<Level>& Levels();

struct HarnessOptions {
  uint32_t seed = 0;
  std::string filter;  // run only families or entries whose "family.entry" contains this
  bool bench = false;
  uint32_t cpuFeatures = 0;  // levels above this processor's word are skipped
};

// Returns the number of failures (the check stops at the first one).
int RunChecks(const HarnessOptions& options);
void RunBenchmarks(const HarnessOptions& options);

}  // namespace Lumaforge::test

#endif  // LUMAFORGE_TESTS_KERNELS_KERNEL_HARNESS_H_
