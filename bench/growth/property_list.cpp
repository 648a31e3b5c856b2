// Reading and writing an array of dictionaries of five entries.

#include "bench/growth/growth.h"

namespace bench {
namespace {

using qx::PropertyListFormat;
using qx::PropertyListSerialization;

qx::Ref<qx::Data> written(const qx::PropertyValue& list, PropertyListFormat format) {
  return PropertyListSerialization::dataWithPropertyList(list, format);
}

qx::PropertyValue readFrom(const qx::Ref<qx::Data>& data) {
  return PropertyListSerialization::propertyListWithData(
      data, qx::PropertyListMutability::immutable, nullptr);
}

template <PropertyListFormat format>
void readList(benchmark::State& state) {
  const qx::PropertyValue list = dictionariesOf(sizeOf(state));
  const auto data = written(list, format);
  require(readFrom(data) == list, "the list");
  growth(state, [&] { return readFrom(data); });
}

template <PropertyListFormat format>
void writeList(benchmark::State& state) {
  const qx::PropertyValue list = dictionariesOf(sizeOf(state));
  growth(state, [&] { return written(list, format); });
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
