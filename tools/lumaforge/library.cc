#include "tools/lumaforge/library.h"

#include "tools/lumaforge/errors.h"

namespace Lumaforge::cli {
namespace {

const char* Meaning(int32_t status) {
  switch (status) {
    case LF_OK: return "success";
    case LF_FAILED: return "failed";
    case LF_INVALID_PARAMETER: return "invalid parameter";
    case LF_SETUP_ALLOC_FAILED: return "allocation failed during set-up";
    case LF_UNSUPPORTED: return "unsupported format";
    case LF_NOT_CREATED: return "filter not created";
    case LF_PARAM_NOT_READY: return "filter not set up";
    case LF_UPSAMPLE_FORMAT: return "unsupported upsampling format";
    default: return "unknown status";
  }
}

void Check(int32_t status) {
  if (status != LF_OK) throw ToolError(StatusText(status));
}

}  // namespace

std::string StatusText(int32_t status) { return "status " + std::to_string(status) + " (" + Meaning(status) + ")"; }

Library::Library(bool verbose) {
  const int32_t status = CreateLumaforge(&lf_);
  if (status != LF_OK || !lf_) throw ToolError("cannot create the library object: " + StatusText(status));
  if (!verbose) {
    int32_t silent = -1;
    lf_->SetParam(LF_FILTER_ALL, LF_PARAM_LOG_LEVEL, &silent);
  }
}

Library::~Library() { DestroyLumaforge(lf_); }

void Library::Init(int32_t type, void* config, uint8_t flag) { Check(lf_->Init(type, config, flag)); }

void Library::SetParam(int32_t type, ParamId id, void* value) { Check(lf_->SetParam(type, id, value)); }

void Library::Process(int32_t type, VideoPicture* input, VideoPicture* output) {
  const auto start = std::chrono::steady_clock::now();
  const int32_t status = lf_->Process(type, input, output);
  processTime_ += std::chrono::steady_clock::now() - start;
  Check(status);
}

}  // namespace Lumaforge::cli
