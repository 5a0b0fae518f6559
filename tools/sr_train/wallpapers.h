// The photographs the filters are trained on and the ones held out for
// measuring them, one picture per wallpaper folder of Debian's
// plasma-workspace-wallpapers package.
#ifndef LUMAFORGE_TOOLS_SR_TRAIN_WALLPAPERS_H_
#define LUMAFORGE_TOOLS_SR_TRAIN_WALLPAPERS_H_

#include <string>
#include <vector>

namespace Lumaforge::sr_train {

// Where the package installs its wallpapers.
inline constexpr const char* kWallpaperDirectory = "/usr/share/wallpapers";

// Paths under `directory`, sorted by folder name.
std::vector<std::string> TrainingPictures(const std::string& directory);
std::vector<std::string> HeldOutPictures(const std::string& directory);

}  // namespace Lumaforge::sr_train

#endif  // LUMAFORGE_TOOLS_SR_TRAIN_WALLPAPERS_H_
