// Filters run one after the other on each frame. A frame in a format the
// next filter does not take is converted first, by the library's converter.
#ifndef LUMAFORGE_TOOLS_LUMAFORGE_CHAIN_H_
#define LUMAFORGE_TOOLS_LUMAFORGE_CHAIN_H_

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "tools/lumaforge/catalog.h"
#include "tools/lumaforge/converter.h"

namespace Lumaforge::cli {

class Chain {
 public:
  // `params` are NAME=VALUE, for every filter of the chain that takes NAME,
  // or FILTER.NAME=VALUE for one filter. Unknown or ambiguous names throw.
  Chain(const std::vector<std::string>& filters, const std::vector<std::string>& params, bool verbose);

  // `where` names the frame in errors: "frame 3 of in.y4m".
  Frame Run(Frame frame, const std::string& where);

  // Time inside the Process calls of filter `i`.
  std::chrono::nanoseconds ProcessTime(size_t i) const { return links_[i].step->ProcessTime(); }

 private:
  struct Link {
    const FilterInfo* info;
    std::unique_ptr<Step> step;
  };
  std::vector<Link> links_;
  Converter converter_;
};

}  // namespace Lumaforge::cli

#endif  // LUMAFORGE_TOOLS_LUMAFORGE_CHAIN_H_
