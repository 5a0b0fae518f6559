#include "tools/lumaforge/chain.h"

#include <algorithm>

#include "tools/lumaforge/errors.h"

namespace Lumaforge::cli {
namespace {

const FilterInfo& Lookup(const std::string& name) {
  const FilterInfo* info = FindFilter(name);
  if (!info) throw ToolError("unknown filter '" + name + "' (`lumaforge filters` lists them)");
  return *info;
}

// Hands each NAME=VALUE to the filters it is meant for.
std::vector<ParamSet> Route(const std::vector<const FilterInfo*>& filters, const std::vector<std::string>& params) {
  std::vector<ParamSet> sets(filters.size());
  for (const std::string& param : params) {
    const size_t equals = param.find('=');
    if (equals == std::string::npos || equals == 0) throw ToolError("--param " + param + ": expected NAME=VALUE");
    std::string name = param.substr(0, equals);
    const std::string value = param.substr(equals + 1);
    std::string only;  // a filter name prefix, "blur.sigma"
    if (const size_t dot = name.find('.'); dot != std::string::npos) {
      only = name.substr(0, dot);
      name = name.substr(dot + 1);
    }
    std::vector<std::string> takers;  // distinct filter names
    for (size_t i = 0; i < filters.size(); ++i) {
      const FilterInfo& f = *filters[i];
      if ((!only.empty() && only != f.name) || !f.Takes(name)) continue;
      if (std::find(takers.begin(), takers.end(), f.name) == takers.end()) takers.emplace_back(f.name);
      sets[i].Set(name, value);
    }
    if (takers.empty()) {
      throw ToolError("--param " + param + ": no filter of the chain takes '" + name +
                      "' (`lumaforge filters` lists the parameters)");
    }
    if (takers.size() > 1) {
      throw ToolError("--param " + param + ": " + takers[0] + " and " + takers[1] + " both take '" + name +
                      "'; write FILTER." + name + "=VALUE");
    }
  }
  return sets;
}

}  // namespace

Chain::Chain(const std::vector<std::string>& filters, const std::vector<std::string>& params, bool verbose)
    : converter_(verbose) {
  std::vector<const FilterInfo*> infos;
  for (const std::string& name : filters) infos.push_back(&Lookup(name));
  const std::vector<ParamSet> sets = Route(infos, params);
  for (size_t i = 0; i < infos.size(); ++i) {
    try {
      links_.push_back({infos[i], infos[i]->make(sets[i], verbose)});
    } catch (const ToolError& e) {
      throw ToolError(std::string(infos[i]->name) + ": " + e.what());
    }
  }
}

Frame Chain::Run(Frame frame, const std::string& where) {
  for (Link& link : links_) {
    try {
      if (!link.info->Accepts(frame.format())) frame = converter_.To(std::move(frame), link.info->PreferredFormat());
      frame = link.step->Run(std::move(frame));
    } catch (const ToolError& e) {
      throw ToolError(std::string(link.info->name) + ": " + where + ": " + e.what());
    }
  }
  return frame;
}

}  // namespace Lumaforge::cli
