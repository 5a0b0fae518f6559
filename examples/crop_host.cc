// A minimal host: creates the manager, crops a synthetic 1280x720 I420
// picture to its centre and to a 4:3 frame, times the crops and prints what
// happened.
#include <cstdio>
#include <vector>

#include "lumaforge/lumaforge.h"

namespace {

int PrintLogLine(uint64_t /*userValue*/, int32_t /*level*/, const char* text) {
  return std::printf("  log: %s\n", text);
}

void Describe(const char* what, const VideoPicture& in, const VideoPicture& out) {
  std::printf("%s: %ux%u picture -> %ux%u at column %td, row %td\n", what, in.width, in.height, out.width, out.height,
              (out.planes[0] - in.planes[0]) % static_cast<long>(in.strides[0]),
              (out.planes[0] - in.planes[0]) / static_cast<long>(in.strides[0]));
}

}  // namespace

int main() {
  const LumaforgeVersion version = GetLumaforgeVersion();
  std::printf("Lumaforge %u.%u.%u.%u, processor tier %d\n", version.major, version.minor, version.patch, version.build,
              GetLumaforgeArch());

  ILumaforge* lf = nullptr;
  if (CreateLumaforge(&lf) != LF_OK) return 1;
  uint64_t callback = reinterpret_cast<uint64_t>(&PrintLogLine);
  lf->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_CALLBACK, &callback);

  // A synthetic I420 picture: a luma ramp and flat chroma.
  const uint32_t width = 1280, height = 720;
  std::vector<uint8_t> y(width * height), u(width * height / 4, 90), v(width * height / 4, 160);
  for (uint32_t row = 0; row < height; ++row) {
    for (uint32_t col = 0; col < width; ++col) y[row * width + col] = static_cast<uint8_t>((row + col) & 0xff);
  }
  VideoPicture input = {};
  input.planes[0] = y.data();
  input.planes[1] = u.data();
  input.planes[2] = v.data();
  input.strides[0] = width;
  input.strides[1] = input.strides[2] = width / 2;
  input.width = width;
  input.height = height;
  input.format = LF_I420;

  CropConfig centre = {1, 180, 320, 640, 360};
  int32_t status = lf->Init(LF_FILTER_CROP, &centre, 0);
  VideoPicture output = {};
  const int frames = 1000;
  for (int i = 0; i < frames && status == LF_OK; ++i) status = lf->Process(LF_FILTER_CROP, &input, &output);
  if (status != LF_OK) {
    std::printf("crop failed with status %d\n", status);
    DestroyLumaforge(lf);
    return 1;
  }
  Describe("centre crop", input, output);
  std::printf("  first luma byte of the crop: %u (the ramp value at row 180, column 320)\n", output.planes[0][0]);

  double usPerFrame = 0.0;
  lf->GetParam(LF_FILTER_CROP, LF_PARAM_TIME_PER_FRAME, &usPerFrame);
  std::printf("  %d crops, %.3f microseconds per frame\n", frames, usPerFrame);

  CropConfig fourByThree = {0, 0, 0, 4, 3};
  lf->SetParam(LF_FILTER_CROP, LF_PARAM_CROP_CONFIG, &fourByThree);
  status = lf->Process(LF_FILTER_CROP, &input, &output);
  Describe("4:3 fit", input, output);

  lf->Uninit(LF_FILTER_CROP);
  DestroyLumaforge(lf);
  return status == LF_OK ? 0 : 1;
}
