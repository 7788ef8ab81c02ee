#include "client/base/Objection.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

namespace tovrtool {
namespace {

std::string remediesText(const std::vector<Objection>& objections) {
  const auto any = [&](bool Remedies::*remedy) {
    return std::any_of(objections.begin(), objections.end(),
                       [&](const Objection& objection) { return objection.remedies.*remedy; });
  };
  std::string text;
  if (any(&Remedies::patch)) text += "; --patch puts the cells into the stored block";
  if (any(&Remedies::replace)) text += "; --replace removes areas that lie wholly inside";
  if (any(&Remedies::beside)) text += "; --beside stores in addition";
  if (any(&Remedies::newScreen)) text += "; --new-screen adds such a screen";
  if (any(&Remedies::force)) text += "; --force does it anyway";
  return text;
}

// What cannot be forced counts more than a conflict.
ExitCode codeOf(const std::vector<Objection>& objections) {
  for (const ExitCode code : {kDamaged, kRefused, kUsage}) {
    const auto hasIt = [&](const Objection& objection) { return objection.code == code; };
    if (std::any_of(objections.begin(), objections.end(), hasIt)) return code;
  }
  return kConflict;
}

}  // namespace

void requireNone(const std::vector<Objection>& objections, const std::string& outcome) {
  if (objections.empty()) return;
  const std::string end = outcome + remediesText(objections);
  if (objections.size() == 1) {
    ToolError error(codeOf(objections), objections[0].text + "; " + end);
    error.setStatus(objections[0].status);
    throw error;
  }
  std::vector<std::string> lines;
  for (const Objection& objection : objections) lines.push_back(objection.text);
  ToolError error(codeOf(objections), fmt::format("{} conflicts; {}", lines.size(), end));
  error.setDetails(std::move(lines));
  throw error;
}

}  // namespace tovrtool
