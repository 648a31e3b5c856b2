#include "qualifiers/format_parser.h"

#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/exception.h>

namespace qx::detail {
namespace {

// What a scanner never does; the builder does not rely on it.
TEST(TreeBuilder, RefusesAConnectiveBeforeAComparison) {
  for (const auto word : {format::Connective::conjunction, format::Connective::disjunction}) {
    TreeBuilder builder("and", nullptr, 0);
    try {
      builder.connective(word, 0, false);
      ADD_FAILURE() << "nothing was raised";
    } catch (const InvalidArgumentException& e) {
      const std::string reason = e.reason();
      const std::string begin = "_qualifierWithQualifierFormat:arguments: -- QXQualifier 0x";
      const std::string end = ": missing qualifier";
      EXPECT_EQ(reason.substr(0, begin.size()), begin);
      EXPECT_TRUE(reason.ends_with(end)) << reason;
      EXPECT_GT(reason.size(), begin.size() + end.size());
    }
  }
}

}  // namespace
}  // namespace qx::detail
