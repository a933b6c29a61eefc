// Checked at compile time: a host that was built with an earlier header finds each member at its place.
#include "kestraboot/application_info.h"

#include <cstddef>
#include <type_traits>

static_assert(std::is_standard_layout_v<formatInfo_tag> && std::is_standard_layout_v<appInfo_tag>);

#define RECORD(record, size) static_assert(sizeof(record) == (size), "another size: " #record);
#define FIELD(record, member, offset, size)                                                             \
    static_assert(offsetof(record, member) == (offset) && sizeof(record::member) == (size),             \
                  "another offset or size: " #record "::" #member);
#include "tests/library/layouts.txt"
