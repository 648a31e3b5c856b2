// Everything the library offers. Programs that care for their build times include the headers they
// use.
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/class_builder.h>
#include <QXFoundation/data.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/fwd.h>
#include <QXFoundation/number.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>
#include <QXFoundation/weak_ref.h>
