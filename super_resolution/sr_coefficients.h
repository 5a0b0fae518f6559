// The enhanced 2x upscaler's trained filters: a table of 8193 classes x 4
// output positions x 10 doubles (nine weights over the 3x3 neighbourhood in
// raster order, one unused), a flag per class saying the file gave it, and
// the loader of the text file that holds them.
#ifndef LUMAFORGE_SUPER_RESOLUTION_SR_COEFFICIENTS_H_
#define LUMAFORGE_SUPER_RESOLUTION_SR_COEFFICIENTS_H_

#include <cstddef>
#include <cstdint>

#include "framework/logger.h"
#include "super_resolution/sr_classes.h"

namespace Lumaforge {

inline constexpr size_t kSrTableDoubles = size_t{kSrClasses} * kSrPositions * kSrWeightsPerPosition;
inline constexpr size_t kSrTableBytes = kSrTableDoubles * sizeof(double);  // 2,621,760

// Index of weight k of (class, position) in the table.
inline size_t SrWeightIndex(int32_t cls, int32_t position, int32_t k) {
  return (static_cast<size_t>(cls) * kSrPositions + position) * kSrWeightsPerPosition + k;
}

// Reads the coefficient file at `path` into `table` and `valid` (both
// zeroed first). Each line: class, position, four ignored fields, then up to
// nine weights, separated by spaces; lines of class 0 (blank ones too) are
// skipped, and so are classes above 8192 or positions outside 0..3, which no
// table slot holds. Returns 0, or 1 when the file cannot be opened (logged).
int32_t setup_enhSR_coeffs_c(const char* path, double* table, uint8_t* valid, Logger* logger);

}  // namespace Lumaforge

#endif  // LUMAFORGE_SUPER_RESOLUTION_SR_COEFFICIENTS_H_
