// A host that knows the library only by its documented binary layouts: it
// declares the interface itself, loads the library at run time (dlopen, or
// LoadLibraryA on Windows) and drives the manager.
#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <chrono>
#include <cmath>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "tests/log_capture.h"

namespace host {

// The platform's loader, as a host would call it.
#if defined(_WIN32)
void* OpenLibrary(const char* path) { return reinterpret_cast<void*>(LoadLibraryA(path)); }
void* Symbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}
void CloseLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
#else
void* OpenLibrary(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
void* Symbol(void* library, const char* name) { return dlsym(library, name); }
void CloseLibrary(void* library) { dlclose(library); }
#endif

struct Picture {
  uint8_t* planes[3];
  uint32_t strides[3];
  uint32_t width, height, dataSize, format, reserved0;
  uint8_t* qpMap;
  uint32_t aux0, aux1, aux2;
  int32_t maskWidth, maskHeight;
  uint32_t reserved1;
  uint8_t* mask;
  uint32_t decoderWord, reserved2;
  uint8_t* data;
  uint32_t frameDurationMs;
};
static_assert(sizeof(Picture) == 120);

class Interface {
 public:
  virtual ~Interface() {}
  virtual int32_t Init(int32_t type, void* config, uint8_t flag) = 0;
  virtual int32_t Uninit(int32_t type) = 0;
  virtual int32_t Process(int32_t type, Picture* in, Picture* out) = 0;
  virtual int32_t SetParam(int32_t type, int32_t id, void* value) = 0;
  virtual int32_t GetParam(int32_t type, int32_t id, void* value) = 0;
};

struct Version {
  uint32_t major, minor, patch, build;
};

using CreateFn = int32_t (*)(Interface**);
using DestroyFn = void (*)(Interface*);
using ArchFn = int32_t (*)();
using VersionFn = Version (*)();

using HostLog = Lumaforge::test::LogCapture<0>;
using OtherLog = Lumaforge::test::LogCapture<1>;
using Lumaforge::test::LogLine;
std::vector<LogLine>& g_lines = HostLog::Lines();
std::vector<LogLine>& g_other = OtherLog::Lines();

// True when `text` is `length` lowercase hex digits.
bool IsHex(const std::string& text, size_t length) {
  return text.size() == length && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::string Address(const void* p) {
  char text[32];
  std::snprintf(text, sizeof(text), "%p", p);
  return text;
}

// A 64x64 BGRA picture over `pixels`.
Picture Bgra64(std::vector<uint8_t>& pixels) {
  Picture p = {};
  p.planes[0] = pixels.data();
  p.strides[0] = 64 * 4;
  p.width = p.height = 64;
  p.format = 6;
  return p;
}

class DlopenHost : public ::testing::Test {
 protected:
  void SetUp() override {
    library = OpenLibrary(LUMAFORGE_LIBRARY_PATH);
    ASSERT_NE(library, nullptr) << LUMAFORGE_LIBRARY_PATH;
    create = reinterpret_cast<CreateFn>(Symbol(library, "CreateLumaforge"));
    destroy = reinterpret_cast<DestroyFn>(Symbol(library, "DestroyLumaforge"));
    ASSERT_TRUE(create && destroy);
    ASSERT_EQ(create(&lf), 0);
    g_lines.clear();
    g_other.clear();
    uint64_t callback = reinterpret_cast<uint64_t>(&HostLog::Callback);
    ASSERT_EQ(lf->SetParam(0, 43, &callback), 0);
  }
  void TearDown() override {
    destroy(lf);
    CloseLibrary(library);
  }
  bool Logged(const std::string& text) const {
    for (const LogLine& line : g_lines) {
      if (line.text.find(text) != std::string::npos) return true;
    }
    return false;
  }
  std::string ManagerPrefix() const { return "[lf][lf] lf=" + Address(lf) + ", INFO: "; }

  void* library = nullptr;
  CreateFn create = nullptr;
  DestroyFn destroy = nullptr;
  Interface* lf = nullptr;
};

TEST_F(DlopenHost, PlainExports) {
  auto arch = reinterpret_cast<ArchFn>(Symbol(library, "GetLumaforgeArch"));
  auto version = reinterpret_cast<VersionFn>(Symbol(library, "GetLumaforgeVersion"));
  ASSERT_TRUE(arch && version);
  EXPECT_GE(arch(), 1);
  const Version v = version();
  EXPECT_EQ(v.major * 1000 + v.minor * 100 + v.patch * 10 + v.build, 3420u);
  EXPECT_NE(Symbol(library, "InitMediaDecoderEnvironment"), nullptr);
  EXPECT_NE(Symbol(library, "UninitMediaDecoderEnvironment"), nullptr);
  EXPECT_EQ(create(nullptr), -2);
}

TEST_F(DlopenHost, InitOfATypeWithoutFilterLogsVersionAndInvalidParameter) {
  EXPECT_EQ(lf->Init(4, nullptr, 0), -2);
  ASSERT_EQ(g_lines.size(), 2u);
  const std::string version = ManagerPrefix() + "Lumaforge Init(), version: Lumaforge Version: 3.4.2.0, commit=";
  ASSERT_EQ(g_lines[0].text.rfind(version, 0), 0u) << g_lines[0].text;
  EXPECT_TRUE(IsHex(g_lines[0].text.substr(version.size()), 7)) << g_lines[0].text;
  EXPECT_EQ(g_lines[1].text, ManagerPrefix() + "Invalid parameter");
  EXPECT_EQ(g_lines[1].level, 2);
  EXPECT_EQ(lf->Process(4, nullptr, nullptr), -5);  // nothing was created

  for (int32_t type : {-1, 0, 7, 10, 15, 17, 19, 28}) EXPECT_EQ(lf->Init(type, nullptr, 0), -2) << type;
}

TEST_F(DlopenHost, SecondInitReusesTheFilter) {
  uint32_t config[5] = {1, 0, 0, 8, 8};
  ASSERT_EQ(lf->Init(16, config, 0), 0);
  ASSERT_EQ(lf->Init(16, nullptr, 1), 0);
  std::vector<std::string> created;
  for (const LogLine& line : g_lines) {
    const size_t at = line.text.find("Create ImageCrop(");
    if (at != std::string::npos) created.push_back(line.text.substr(at));
  }
  ASSERT_EQ(created.size(), 2u);
  EXPECT_EQ(created[0], created[1]);
  // The filter kept the configuration from the first Init.
  std::vector<uint8_t> pixels(64 * 64 * 4);
  Picture in = Bgra64(pixels), out = {};
  EXPECT_EQ(lf->Process(16, &in, &out), 0);
  EXPECT_EQ(out.width, 8u);
}

TEST_F(DlopenHost, CallsOnAnUncreatedFilter) {
  double value = 0;
  EXPECT_EQ(lf->Process(16, nullptr, nullptr), -5);
  EXPECT_EQ(lf->GetParam(16, 54, &value), -7);
  EXPECT_EQ(lf->SetParam(16, 58, &value), -7);
  EXPECT_EQ(lf->SetParam(16, 53, &value), -1);
  EXPECT_EQ(lf->Uninit(16), 0);
}

TEST_F(DlopenHost, TypeAndPointerChecks) {
  double value = 0;
  for (int32_t type : {-1, 0, 28}) {
    EXPECT_EQ(lf->Uninit(type), -2);
    EXPECT_EQ(lf->Process(type, nullptr, nullptr), -2);
    EXPECT_EQ(lf->GetParam(type, 54, &value), -2);
  }
  EXPECT_EQ(lf->SetParam(-1, 44, &value), -2);
  EXPECT_EQ(lf->SetParam(28, 44, &value), -2);
  EXPECT_EQ(lf->GetParam(16, 54, nullptr), -2);
  EXPECT_EQ(lf->SetParam(0, 12, &value), 0);  // other ids on type 0 do nothing
  EXPECT_EQ(lf->SetParam(0, 12, nullptr), -2);
  EXPECT_EQ(lf->SetParam(0, 53, nullptr), -2);
  EXPECT_EQ(lf->SetParam(0, 43, nullptr), -2);
  EXPECT_EQ(lf->SetParam(0, 44, nullptr), -2);
  EXPECT_EQ(lf->SetParam(0, 49, nullptr), -2);
}

TEST_F(DlopenHost, LogSettingsReachManagerAndFilters) {
  // A callback for a type without a filter still changes the manager's logger.
  uint64_t other = reinterpret_cast<uint64_t>(&OtherLog::Callback);
  EXPECT_EQ(lf->SetParam(5, 43, &other), 0);
  uint64_t user = 0xfeed;
  EXPECT_EQ(lf->SetParam(0, 49, &user), 0);
  lf->Init(4, nullptr, 0);
  EXPECT_TRUE(g_lines.empty());
  ASSERT_EQ(g_other.size(), 2u);
  EXPECT_EQ(g_other[0].user, 0xfeedu);

  // A zero callback keeps the current one.
  uint64_t zero = 0;
  EXPECT_EQ(lf->SetParam(0, 43, &zero), 0);
  lf->Init(4, nullptr, 0);
  EXPECT_EQ(g_other.size(), 4u);

  // Level -1 silences the manager; the level reaches filters at their Init.
  int32_t silent = -1;
  EXPECT_EQ(lf->SetParam(0, 44, &silent), 0);
  lf->Init(4, nullptr, 0);
  EXPECT_EQ(g_other.size(), 4u);
}

TEST_F(DlopenHost, TimingIntervalAnswersMinusOneButApplies) {
  uint32_t config[5] = {1, 2, 2, 16, 16};
  ASSERT_EQ(lf->Init(16, config, 0), 0);
  double value = 0;
  EXPECT_EQ(lf->GetParam(16, 54, &value), 0);
  EXPECT_FALSE(std::isfinite(value));  // no frame yet

  int32_t oneMs = 1;
  EXPECT_EQ(lf->SetParam(0, 53, &oneMs), -1);
  std::vector<uint8_t> pixels(64 * 64 * 4);
  Picture in = Bgra64(pixels), out = {};
  ASSERT_EQ(lf->Process(16, &in, &out), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  ASSERT_EQ(lf->Process(16, &in, &out), 0);

  // "[lf][IMAGECROP] IMAGECROP=<address>, INFO: <%f> ms per frame"
  bool found = false;
  for (const LogLine& line : g_lines) {
    const std::string& t = line.text;
    const size_t info = t.find(", INFO: ");
    const size_t suffix = t.rfind(" ms per frame");
    if (t.rfind("[lf][IMAGECROP] IMAGECROP=", 0) != 0 || info == std::string::npos || suffix == std::string::npos ||
        suffix + 13 != t.size()) {
      continue;
    }
    const std::string number = t.substr(info + 8, suffix - info - 8);
    const size_t dot = number.find('.');
    found = dot != std::string::npos && number.size() - dot - 1 == 6;
  }
  EXPECT_TRUE(found);
  EXPECT_EQ(lf->SetParam(16, 53, &oneMs), -1);
}

TEST_F(DlopenHost, CropThroughTheHostLayout) {
  std::vector<uint8_t> pixels(1280 * 720 * 3 / 2);
  Picture in = {}, out = {};
  in.planes[0] = pixels.data();
  in.planes[1] = pixels.data() + 1280 * 720;
  in.planes[2] = in.planes[1] + 640 * 360;
  in.strides[0] = 1280;
  in.strides[1] = in.strides[2] = 640;
  in.width = 1280;
  in.height = 720;
  in.format = 23 | 0x80000000u;
  uint32_t config[5] = {1, 11, 7, 101, 51};
  ASSERT_EQ(lf->Init(16, config, 0), 0);
  ASSERT_EQ(lf->Process(16, &in, &out), 0);
  EXPECT_EQ(out.format, 23 | 0x80000000u);
  EXPECT_EQ(out.width, 100u);
  EXPECT_EQ(out.height, 50u);
  EXPECT_EQ(out.planes[0], in.planes[0] + 10 * 1280 + 6);
  EXPECT_EQ(out.planes[1], in.planes[1] + 5 * 640 + 3);

  uint32_t fit[5] = {0, 0, 0, 4, 3};
  ASSERT_EQ(lf->SetParam(16, 58, fit), 0);
  ASSERT_EQ(lf->Process(16, &in, &out), 0);
  EXPECT_EQ(out.width, 960u);
  EXPECT_EQ(out.height, 720u);
  EXPECT_EQ(lf->Uninit(16), 0);
  EXPECT_EQ(lf->Process(16, &in, &out), -5);
}

}  // namespace host
