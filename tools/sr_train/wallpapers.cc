#include "tools/sr_train/wallpapers.h"

namespace Lumaforge::sr_train {
namespace {

// One file per folder: its full-size landscape picture (the other sizes a
// folder lists are links to it). Loading halves pictures wider than 1920, so
// targets are 1280 to 1920 wide. Every third folder in sorted order is held
// out, so both lists mix photographs and rendered art.
constexpr const char* kTraining[] = {
    "Altai/contents/images/5120x2880.png",        "Autumn/contents/images/2560x1600.jpg",
    "Canopee/contents/images/3840x2160.png",      "Cascade/contents/images/3840x2160.png",
    "ColdRipple/contents/images/2560x1600.jpg",   "ColorfulCups/contents/images/2560x1600.jpg",
    "Elarun/contents/images/2560x1600.png",       "EveningGlow/contents/images/2560x1600.jpg",
    "Flow/contents/images/5120x2880.jpg",         "FlyingKonqui/contents/images/2560x1600.png",
    "Honeywave/contents/images/5120x2880.jpg",    "IceCold/contents/images/5120x2880.png",
    "Kite/contents/images/2560x1600.jpg",         "Kokkini/contents/images/3840x2160.png",
    "OneStandsOut/contents/images/2560x1600.jpg", "Opal/contents/images/3840x2160.png",
    "Patak/contents/images/5120x2880.png",        "Path/contents/images/2560x1600.jpg",
    "Shell/contents/images/5120x2880.jpg",        "Volna/contents/images/5120x2880.jpg",
};

constexpr const char* kHeldOut[] = {
    "BytheWater/contents/images/2560x1600.jpg",  "Cluster/contents/images/3840x2160.png",
    "DarkestHour/contents/images/2560x1600.jpg", "FallenLeaf/contents/images/2560x1600.jpg",
    "Grey/contents/images/2560x1600.jpg",        "Kay/contents/images/5120x2880.png",
    "MilkyWay/contents/images/5120x2880.png",    "PastelHills/contents/images/3200x2000.jpg",
    "SafeLanding/contents/images/5120x2880.jpg", "summer_1am/contents/images/2560x1600.jpg",
};

template <size_t N>
std::vector<std::string> Under(const std::string& directory, const char* const (&files)[N]) {
  std::vector<std::string> paths;
  for (const char* file : files) paths.push_back(directory + "/" + file);
  return paths;
}

}  // namespace

std::vector<std::string> TrainingPictures(const std::string& directory) { return Under(directory, kTraining); }
std::vector<std::string> HeldOutPictures(const std::string& directory) { return Under(directory, kHeldOut); }

}  // namespace Lumaforge::sr_train
