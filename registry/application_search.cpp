// A breadth-first search: a queue of open keys, each with its path. The key at the head lists its
// subkeys; an application key becomes a record, any other one that opens goes to the tail.
#include "registry/application_search.h"

#include "foundation/registry_key.h"
#include "foundation/text.h"
#include "registry/application_record.h"
#include "registry/registry_layout.h"

#include <cstdint>
#include <cwchar>
#include <deque>
#include <utility>

namespace kestraboot
{

namespace
{

struct OpenKey {
    RegistryKey key;
    std::wstring path;
};

} // namespace

std::vector<appInfo_tag> CollectApplicationKeys()
{
    std::vector<appInfo_tag> found;
    std::deque<OpenKey> pending;
    pending.push_back({RegistryKey::OpenLocalMachine(kCorvaneRoot, KEY_READ), kCorvaneRoot});

    while (!pending.empty()) {
        OpenKey parent = std::move(pending.front());
        pending.pop_front();

        // The first name that cannot be read ends this key, whether it is past the last one or too
        // long.
        for (std::uint32_t index = 0; const wchar_t* const name = parent.key.EnumSubkey(index);
             ++index) {
            std::wstring childPath = JoinPath(parent.path, name);
            if (std::wcscmp(name, kApplicationKeyName) == 0) {
                ReadApplicationRecord(std::move(childPath), found.emplace_back());
                continue;
            }
            RegistryKey child = RegistryKey::OpenLocalMachine(childPath, KEY_READ);
            if (child.IsOpen()) {
                pending.push_back({std::move(child), std::move(childPath)});
            }
        }
    }
    return found;
}

} // namespace kestraboot
