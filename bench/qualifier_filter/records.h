#pragma once

// The records that filtering is measured on, and the three queries:
//
//   Q1  age > 30
//   Q2  age > 30 and name like "J*"
//   Q3  city is one of two, and score >= 0.5, and not name like "*x*"

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

struct Row {
  std::string name;  // 8 to 20 letters
  int age = 0;
  std::string city;
  double score = 0;
  std::vector<std::string> tags;
};

// The first `count` records, made once and always the same.
const std::vector<Row>& rowsOf(std::size_t count);

inline bool byHand(int query, const Row& row) {
  if (query == 1) return row.age > 30;
  if (query == 2) return row.age > 30 && !row.name.empty() && row.name[0] == 'J';
  return (row.city == "Oslo" || row.city == "Rome") && row.score >= 0.5 &&
         row.name.find('x') == std::string::npos;
}

}  // namespace bench
