#pragma once

#include "base/strings.h"

namespace DataConsumers {

// How a job calls the parts of its XML.
struct XmlNames {
    String set;                 // the element around all rows
    String row;                 // the element around a row
    String item;                // the element around a value
    String attribute;           // of an item: holds the column's name
    bool field_is_tag = false;  // the elements of values are called after their columns instead
};

}  // namespace DataConsumers
