#include "tools/ctl/check/check.h"

#include <iterator>

namespace kestraboot::tools
{

Rows Check(const Facts& facts)
{
    Rows rows;
    const auto add = [&](Rows more) {
        rows.insert(rows.end(), std::make_move_iterator(more.begin()),
                    std::make_move_iterator(more.end()));
    };
    add({AccountRow(facts.account), WindowsRow(facts.windows)});
    add(ControlRows(facts));
    add({AutoRunRow(facts)});
    add(ApplicationRows(facts));
    add(DefaultRows(facts));
    add(PreferencesRows(facts));
    add({OrganiserRow(facts)});
    if (facts.boot) {
        add({OemRow(*facts.boot, IsInControl(facts.control))});
        add(PluginRows(facts.boot->plugins));
    }
    add(ImagingRows(facts.imaging, WatchedOn(facts.windows)));
    add({DebugOutputRow(facts.debugOutputIsRead)});
    add(VersionRows(facts));
    return rows;
}

} // namespace kestraboot::tools
