#include "workbench/operators/columns.h"

namespace operators {

domain::DataField makeField(const char* name, int type, int places, bool strip) {
  domain::DataField field;
  field.displayName = name;
  field.type = type;
  if (type == domain::FloatingPointField) {
    field.precision = places;
    field.stripTrailingZeros = strip;
  }
  return field;
}

}  // namespace operators
