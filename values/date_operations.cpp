#include "values/date_operations.h"

#include <QXFoundation/iso_date.h>
#include <QXFoundation/rfc3339.h>

namespace qx::detail {
namespace {

template <Ref<String> (*Write)(In<Date>)>
Ref<String> writeDate(const PropertyValue& date) {
  return Write(date.as<Date>());
}

template <Ref<Date> (*Read)(const PropertyValue&)>
PropertyValue readDate(const PropertyValue&, const Payload&, const PropertyValue* arguments) {
  return Read(arguments[0]);
}

Ref<Date> readRfc3339Date(const PropertyValue& text) {
  return qxDateFromRFC3339String(FromValue<Ref<String>>::get(text));
}

PropertyValue countDays(const PropertyValue&, const Payload&, const PropertyValue* arguments) {
  return daysBetweenDate(FromValue<Ref<Date>>::get(arguments[0]),
                         FromValue<Ref<Date>>::get(arguments[1]));
}

}  // namespace

void addDateOperations(ClassBuilderBase& c) {
  c.addFunction("qxISO8601String", &writeDate<&qxISO8601String>);
  c.addFunction("qxRFC3339String",
                &writeDate<static_cast<Ref<String> (*)(In<Date>)>(&qxRFC3339String)>);
  c.addFunction("qxLocalRFC3339String", &writeDate<&qxLocalRFC3339String>);
  c.addClassOperation({"qxDateFromISO8601String:", &readDate<&qxDateFromISO8601String>, 1, {}});
  c.addClassOperation({"qxDateFromRFC3339String:", &readDate<&readRfc3339Date>, 1, {}});
  c.addClassOperation({"daysBetweenDate:andDate:", &countDays, 2, {}});
}

}  // namespace qx::detail
