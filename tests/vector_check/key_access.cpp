// kvc, like

#include "tests/vector_check/driver.h"

namespace vector_check {

using namespace qx;

namespace {

Outcome keyPath(const json& args, const json& expect) {
  const PropertyValue v =
      plainValue(args.at("object")).valueForKeyPath(args.at("path").get<std::string>());
  return compare(expect, v.isNil() ? json{{"nil", true}} : json{{"value", plainJson(v)}});
}

Outcome like(const json& args, const json& expect) {
  const PropertyValue text = args.at("text").get<std::string>();
  const PropertyValue pattern = args.at("pattern").get<std::string>();
  const bool result = args.at("ignoreCase").get<bool>() ? text.isCaseInsensitiveLike(pattern)
                                                        : text.isLike(pattern);
  return compare(expect, {{"result", result}});
}

}  // namespace

void addValueOperations(Operations& operations) {
  operations["kvc"] = keyPath;
  operations["like"] = like;
}

}  // namespace vector_check
