// Lumaforge: video processing for real-time media hosts.
//
// The whole public interface. A host creates one ILumaforge with
// CreateLumaforge, initialises the filters it needs by filter type, passes
// pictures through them frame by frame, and releases the object with
// DestroyLumaforge. Every call returns a LumaforgeStatus value; nothing is
// thrown across this interface. One ILumaforge must be used from one thread at
// a time.
#ifndef LUMAFORGE_LUMAFORGE_H_
#define LUMAFORGE_LUMAFORGE_H_

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(LUMAFORGE_BUILDING_LIBRARY)
#define LUMAFORGE_API __declspec(dllexport)
#else
#define LUMAFORGE_API __declspec(dllimport)
#endif
#else
#define LUMAFORGE_API __attribute__((visibility("default")))
#endif

// Status codes returned by every operation.
enum LumaforgeStatus : int32_t {
  LF_OK = 0,
  LF_FAILED = -1,              // refused uninitialise, failed allocation, request not carried out
  LF_INVALID_PARAMETER = -2,   // null pointer, type out of range, unusable configuration or picture
  LF_SETUP_ALLOC_FAILED = -3,  // allocation failure inside a set-up step, or no logger
  LF_UNSUPPORTED = -4,         // unsupported format, format pair, size mismatch or parameter id
  LF_NOT_CREATED = -5,         // Process on a filter type that was never initialised
  LF_PARAM_NOT_READY = -7,     // SetParam/GetParam on a filter that is not created or set up
  LF_UPSAMPLE_FORMAT = -8,     // unsupported format in the upsampling filter
};

// Picture formats: bits 0-30 of VideoPicture::format. Bit 31 marks rows
// stored bottom-up (LF_FORMAT_BOTTOM_UP).
enum PixelFormat : uint32_t {
  LF_RGB24 = 1,  // packed R, G, B
  LF_RGBA = 2,   // packed R, G, B, A
  LF_BGR24 = 5,  // packed B, G, R
  LF_BGRA = 6,   // packed B, G, R, A
  LF_ABGR = 7,   // packed A, B, G, R
  LF_ARGB = 8,   // packed A, R, G, B
  LF_RGBP = 9,   // planar R, G, B in one buffer: plane k at k * strides[0] * height
  LF_BGRP = 10,  // as LF_RGBP, planes B, G, R
  LF_YUY2 = 20,  // packed 4:2:2 Y0 U Y1 V
  LF_YVYU = 21,  // packed 4:2:2 Y0 V Y1 U
  LF_UYVY = 22,  // packed 4:2:2 U Y0 V Y1
  LF_I420 = 23,  // planar 4:2:0 Y, U, V
  LF_YV12 = 24,  // planar 4:2:0 Y, V, U
  LF_NV12 = 26,  // Y plane, interleaved U V plane at half height
  LF_NV21 = 29,  // Y plane, interleaved V U plane at half height
  LF_I440 = 30,  // planar, chroma full width and half height
  LF_VYUY = 31,  // packed 4:2:2 V Y0 U Y1 (a grey plane for scaling and blur)
};

#define LF_FORMAT_BOTTOM_UP 0x80000000u
#define LF_FORMAT_CODE_MASK 0x7fffffffu

// Parameter ids for SetParam/GetParam. One numbering for all filters; each
// filter accepts the ids listed beside it.
enum ParamId : int32_t {
  LF_PARAM_DENOISE_LEVEL = 1,            // SetParam on denoise, int32_t: 0 automatic, 1..4 fixed, -1 pass through
  LF_PARAM_DENOISE_INTERVAL = 2,         // SetParam on denoise, int32_t frames between estimations (< 1 ignored)
  LF_PARAM_DENOISE_RESTART = 3,          // SetParam on denoise (value unused but not null): frame count back to 0
  LF_PARAM_DENOISE_REINIT = 4,           // SetParam on denoise (value unused but not null): re-initialise as I420
  LF_PARAM_DENOISE_CURRENT_LEVEL = 5,    // GetParam on denoise, int32_t: the level in force
  LF_PARAM_DENOISE_NOISE_ESTIMATE = 6,   // GetParam on denoise, int32_t: the last noise estimate
  LF_PARAM_DEBAND_SET_DEPTH_Y = 25,      // SetParam on deband, int32_t luma passes 0..4 (others ignored)
  LF_PARAM_DEBAND_GET_DEPTH_Y = 26,      // GetParam on deband, int32_t
  LF_PARAM_DEBAND_SET_DEPTH_UV = 27,     // SetParam on deband, int32_t chroma passes 1..4 (others ignored)
  LF_PARAM_DEBAND_GET_DEPTH_UV = 28,     // GetParam on deband, int32_t
  LF_PARAM_DEBAND_SET_STRENGTH = 29,     // SetParam on deband, int32_t tap threshold in levels (0: off)
  LF_PARAM_DEBAND_GET_STRENGTH = 30,     // GetParam on deband, int32_t
  LF_PARAM_DEBAND_SET_DITHER = 31,       // SetParam on deband, int32_t dither level (0..2: plain rounding)
  LF_PARAM_DEBAND_GET_DITHER = 32,       // GetParam on deband, int32_t
  LF_PARAM_DEBAND_SET_LOG2_SIZE = 33,    // SetParam on deband, int32_t log2 of the sampling span
  LF_PARAM_DEBAND_GET_LOG2_SIZE = 34,    // GetParam on deband, int32_t (id 36 answers the same)
  LF_PARAM_DEBAND_SET_SEED_METHOD = 35,  // SetParam on deband, int32_t: 1 seed from the frame parity, else random
  LF_PARAM_DEBAND_SET_AUTO = 37,         // SetParam on deband, int32_t: non-zero chooses strength and size from QPs
  LF_PARAM_DEBAND_GET_AUTO = 38,         // GetParam on deband, one byte
  LF_PARAM_LOG_CALLBACK = 43,            // SetParam, uint64_t: a LumaforgeLogCallback (0 keeps the current one)
  LF_PARAM_LOG_LEVEL = 44,               // SetParam, int32_t: highest level written, -1 silences
  LF_PARAM_VIDEO_EFFECT = 45,            // SetParam on the video filter, uint32_t: a VideoEffect
  LF_PARAM_LOG_USER_VALUE = 49,          // SetParam, uint64_t: first argument of the log callback
  LF_PARAM_SR_ALTERNATIVE_15 = 50,       // SetParam on super resolution, uint8_t: 1.5x by the alternative kernel
  LF_PARAM_SR_ENHANCED = 51,             // SetParam on super resolution, uint8_t: 2x by the trained per-class filters
  LF_PARAM_SR_COEFFICIENT_FILE = 52,     // SetParam on super resolution, char[]: UTF-8 path of superResCoeffs.txt
  LF_PARAM_TIMING_INTERVAL = 53,         // SetParam, int32_t ms between timing lines (<1 means 10000); answers -1
  LF_PARAM_TIME_PER_FRAME = 54,          // GetParam, double: microseconds per frame since the last timing line
  LF_PARAM_CROP_CONFIG = 58,             // SetParam on the crop filter, CropConfig
  LF_PARAM_BLUR_SIGMA = 59,  // SetParam/GetParam on the Gaussian blur, float sigma, held to 0.5 .. 1000 (NaN, inf: -2)
};

// Filter types: the first argument of every ILumaforge call.
enum FilterType : int32_t {
  LF_FILTER_ALL = 0,  // SetParam only: the manager and every existing filter
  // Colour space conversion: no configuration; converts the input into the
  // output record's format over the smaller of the two sizes. The input is
  // checked (missing planes, strides shorter than a row: -2); the output
  // record is not: its planes must exist and hold its format at its size.
  LF_FILTER_CSC = 1,
  // Denoise in place on I420/YV12 pictures: an edge-preserving 3x3 spatial
  // filter and a motion-gated recursion against the previous output. Init's
  // config is a DenoiseConfig; Process changes its input picture (the output
  // record is not used). Levels 1..4 are fixed strengths, 0 chooses them
  // from a noise estimate every LF_PARAM_DENOISE_INTERVAL frames.
  LF_FILTER_DENOISE = 2,
  // Deband of I420 pictures from the input into the output planes (not in
  // place; every plane 64-byte aligned): four-tap averages horizontally and
  // vertically with a strength threshold, and a CRC-32C dither. Init's
  // config is a FastDebandConfig; the picture's qpMap (one byte per 16x16
  // block, or null for QP 24) steers the automatic mode.
  LF_FILTER_FAST_DEBAND = 5,
  // Downsampling of RGB24/BGR24, 32-bit RGB, RGBP, I420 and 8-bit grey (31)
  // pictures to a smaller even size. No configuration; the Init flag 1 makes
  // the filter write into the caller's output planes (copying back when they
  // are not 16-byte aligned), 0 hands back the filter's own buffer in the
  // output record (valid until the next Process or Uninit). Process answers
  // 0, or -1 for any picture it refuses.
  LF_FILTER_DOWNSAMPLE = 8,
  LF_FILTER_CROP = 16,
  // Super resolution: I420 pictures of even sizes enlarged by exactly 2 or
  // exactly 1.5 in both directions. No configuration; the Init flag works
  // as the downsampler's (1: into the caller's output planes, 0: the
  // filter's own buffer handed back in the output record). The picture's
  // qpMap (one byte per 16x16 block, or null for QP 24 everywhere) steers
  // the standard kernels; LF_PARAM_SR_ENHANCED selects the trained 2x
  // filters read from the coefficient file (default path
  // "../../../../../super_resolution/data/superResCoeffs.txt" from the
  // working directory, or LF_PARAM_SR_COEFFICIENT_FILE). Process answers 0,
  // -1 (refused record, unsupported ratio, unreadable coefficient file) or
  // -4 (enhanced 1.5x).
  LF_FILTER_SUPER_RESOLUTION = 20,
  // Upsampling by any ratio with libyuv's plane scaler: Init's config is a
  // uint32_t UpsampleMode (null keeps it; values other than 2 and 3 mean
  // linear). I420 pictures of even sizes go through libyuv's I420Scale
  // (any ratio, shrinking too); grey (31) pictures are scaled only when they
  // get taller and are otherwise left as they were. Other formats: -8.
  LF_FILTER_UPSAMPLE = 21,
  // Colour effects in place on I420 pictures: Init's config is a
  // VideoFilterConfig; Process changes its input picture (the output record
  // is not used). Colour effects need even sizes.
  LF_FILTER_VIDEO_FILTER = 22,
  // Alpha blending: Init's config is the alpha map (output width x height
  // bytes, rows packed; kept, not copied). Process mixes the input into the
  // output in place: out = (in * (256 - a) + out * a) >> 8. 32-bit RGB and
  // I420/YV12 outputs, tightly packed (rows are addressed by the width).
  // Missing planes are refused (-2); the sizes of the input and the map are
  // not checked: both are read over the output's width x height.
  LF_FILTER_ALPHA_BLEND = 24,
  // Recursive Gaussian blur of any sigma at a cost per pixel independent of
  // sigma. Init's config is a float sigma (null keeps the current one, 5.0
  // at first). 32-bit RGB, I420/YV12 and grey (31) pictures, tightly packed:
  // rows are addressed by the width, strides are not read.
  LF_FILTER_GAUSS_BLUR = 25,
};

// Log levels, and the callback that receives finished log lines.
enum LogLevel : int32_t {
  LF_LOG_ERROR = 0,
  LF_LOG_WARNING = 1,
  LF_LOG_INFO = 2,
  LF_LOG_DEBUG = 3,
  LF_LOG_DETAIL = 4,
};
typedef int (*LumaforgeLogCallback)(uint64_t userValue, int32_t level, const char* text);

// One picture in the host's memory. The library never allocates or frees
// the pixels behind it; filters write into the output record's planes (crop
// writes pointers into the input instead). The layout is fixed: reserved
// words are part of it, and callers always pass the whole record.
struct VideoPicture {
  uint8_t* planes[3];   // plane 0, 1, 2; unused planes may be null
  uint32_t strides[3];  // bytes from one row to the next, per plane
  uint32_t width;       // pixels
  uint32_t height;      // rows of plane 0
  uint32_t dataSize;    // bytes behind `data` (decoders)
  uint32_t format;      // PixelFormat code | LF_FORMAT_BOTTOM_UP
  uint32_t reserved0;
  uint8_t* qpMap;  // one quantiser byte per 16x16 block, raster order, or null
  uint32_t aux0;
  uint32_t aux1;
  uint32_t aux2;
  int32_t maskWidth;
  int32_t maskHeight;
  uint32_t reserved1;
  uint8_t* mask;  // one byte per pixel, rows of maskWidth bytes, or null
  uint32_t decoderWord;
  uint32_t reserved2;
  uint8_t* data;  // one contiguous pixel buffer (decoders)
  uint32_t frameDurationMs;
};

#if defined(__cplusplus) && (defined(__x86_64__) || defined(_M_X64))
static_assert(offsetof(VideoPicture, aux1) == 68, "VideoPicture layout is fixed by the host");
static_assert(offsetof(VideoPicture, aux2) == 72, "VideoPicture layout is fixed by the host");
static_assert(sizeof(VideoPicture) == 120, "VideoPicture layout is fixed by the host");
#endif

// Denoise filter (type 2) configuration, for Init.
struct DenoiseConfig {
  uint32_t width;   // luma width in pixels
  uint32_t height;  // luma height in pixels
  uint32_t format;  // LF_I420 or LF_YV12
  int32_t level;    // 0 automatic, 1..4 fixed, -1 pass pictures through
};

// Deband filter (type 5) configuration, for Init.
struct FastDebandConfig {
  uint32_t width;
  uint32_t height;
  int32_t strength;  // tap threshold in levels (default 8)
  int32_t dither;    // dither level (default 6: +-1/2 level)
  int32_t log2Size;  // log2 of the sampling span (default 6)
  uint32_t format;   // LF_I420
  int32_t depthY;    // luma passes 0..4
  int32_t depthUV;   // chroma passes 1..4
};

// Crop filter (type 16) configuration, for Init and LF_PARAM_CROP_CONFIG.
struct CropConfig {
  uint32_t mode;    // 0: fit the aspect ratio width:height at the top-left corner; 1: explicit rectangle
  uint32_t top;     // first row (mode 1); must be below the picture height in both modes
  uint32_t left;    // first column (mode 1); must be left of the picture width in both modes
  uint32_t width;   // rectangle width (mode 1) or aspect numerator (mode 0); not 0
  uint32_t height;  // rectangle height (mode 1) or aspect denominator (mode 0); not 0
};

// Upsampling (type 21) filter modes.
enum UpsampleMode : uint32_t {
  LF_UPSAMPLE_LINEAR = 1,    // horizontal interpolation, nearest rows
  LF_UPSAMPLE_BILINEAR = 2,  // rows blended too
  LF_UPSAMPLE_BOX = 3,       // box averaging when shrinking by more than half, else bilinear
};

// Video filter (type 22) effects.
enum VideoEffect : uint32_t {
  LF_EFFECT_NONE = 0,          // Process answers -2
  LF_EFFECT_GREY = 1,          // chroma planes set to 128 (also any unknown value)
  LF_EFFECT_HUE_ROTATE = 2,    // U and V rotated by 120 radians
  LF_EFFECT_SEPIA = 3,         // sepia tone
  LF_EFFECT_TONE_CURVES = 4,   // contrast S-curves on red and green, faded blue
  LF_EFFECT_CURVE_TABLES = 5,  // faded warm film look
};

// Video filter (type 22) configuration for Init. `format` must be I420.
struct VideoFilterConfig {
  uint32_t width;
  uint32_t height;
  uint32_t format;
  uint32_t effect;  // a VideoEffect
};

struct LumaforgeVersion {
  uint32_t major;
  uint32_t minor;
  uint32_t patch;
  uint32_t build;
};

// The processing object. Filters are addressed by type; the first Init of a
// type creates its filter, Uninit destroys it.
class ILumaforge {
 public:
  virtual ~ILumaforge() {}
  virtual int32_t Init(int32_t type, void* config, uint8_t flag) = 0;
  virtual int32_t Uninit(int32_t type) = 0;
  virtual int32_t Process(int32_t type, VideoPicture* input, VideoPicture* output) = 0;
  virtual int32_t SetParam(int32_t type, ParamId id, void* value) = 0;
  virtual int32_t GetParam(int32_t type, ParamId id, void* value) = 0;
};

extern "C" {
LUMAFORGE_API int32_t CreateLumaforge(ILumaforge** out);
LUMAFORGE_API void DestroyLumaforge(ILumaforge* instance);
// Best instruction-set tier of this processor: 5 AVX2, 4 AVX, 3 SSE4.2, 2 SSSE3, 1 SSE2, 0 none.
LUMAFORGE_API int32_t GetLumaforgeArch(void);
LUMAFORGE_API LumaforgeVersion GetLumaforgeVersion(void);
// Call once per process before using the media decoder filter, and the
// Uninit pair after its last use.
LUMAFORGE_API bool InitMediaDecoderEnvironment(void);
LUMAFORGE_API void UninitMediaDecoderEnvironment(void);
}

#endif  // LUMAFORGE_LUMAFORGE_H_
