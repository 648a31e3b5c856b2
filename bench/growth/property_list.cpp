// Reading and writing an array of dictionaries of five entries.

#include "bench/growth/growth.h"

namespace bench {
namespace {

using qx::PropertyListFormat;
using qx::PropertyListSerialization;

qx::Ref<qx::Data> written(std::size_t size, PropertyListFormat format) {
  return PropertyListSerialization::dataWithPropertyList(dictionariesOf(size), format);
}

qx::PropertyValue readFrom(const qx::Ref<qx::Data>& data) {
  return PropertyListSerialization::propertyListWithData(
      data, qx::PropertyListMutability::immutable, nullptr);
}

template <PropertyListFormat format>
void readList(benchmark::State& state) {
  const auto data = written(sizeOf(state), format);
  require(readFrom(data) == qx::PropertyValue(dictionariesOf(sizeOf(state))), "the list");
  growth(state, [&] { return readFrom(data); });
}

template <PropertyListFormat format>
void writeList(benchmark::State& state) {
  growth(state, [&] { return written(sizeOf(state), format); });
}

BENCHMARK(readList<PropertyListFormat::xml>)->Name("property_list/xml_read")->Apply(everySize);
BENCHMARK(writeList<PropertyListFormat::xml>)->Name("property_list/xml_write")->Apply(everySize);
BENCHMARK(readList<PropertyListFormat::binary>)
    ->Name("property_list/binary_read")
    ->Apply(everySize);
BENCHMARK(writeList<PropertyListFormat::binary>)
    ->Name("property_list/binary_write")
    ->Apply(everySize);

}  // namespace
}  // namespace bench
