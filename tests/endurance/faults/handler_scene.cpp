#include "tests/endurance/faults/handler_scene.h"

#include "tests/endurance/faults/armed.h"

namespace kestraboot::tests
{
namespace
{

class HandlerAct final : public Act
{
public:
    HandlerAct(Machine& where, const HandlerOperation& what, bool isLoaded)
        : machine(where), operation(what), loaded(isLoaded)
    {
        ::GetCurrentDirectoryW(MAX_PATH, folderBefore);
    }
    ~HandlerAct() override
    {
        CloseClaim();
        ::SetCurrentDirectoryW(folderBefore);
    }

    void Prepare() override
    {
        CloseClaim();
        ::SetCurrentDirectoryW(folderBefore);
        machine.Restore();
        if (loaded) {
            handler.LoadInformation();
        }
    }

    void Run() override
    {
        const Armed armed;
        operation(handler);
    }

    void ShowResults() override
    {
        for (const appInfo_tag& application : handler.applications) {
            const std::wstring shown = L'"' + application.Name + L"\", flag " +
                                       std::to_wstring(application.DefaultFlag) + L", formats " +
                                       std::to_wstring(application.FileFormats.size()) + L' ' +
                                       application.Icon + L' ' + application.Desc;
            Journal::Add(L"has", shown.c_str());
        }
        Journal::GoOn();
        machine.ShowStored();
        wchar_t folder[MAX_PATH] = {};
        ::GetCurrentDirectoryW(MAX_PATH, folder);
        if (std::wcscmp(folder, folderBefore) != 0) {
            Journal::Add(L"works in", folder);
        }
        CloseClaim();
    }

private:
    Machine& machine;
    const HandlerOperation& operation;
    bool loaded;
    wchar_t folderBefore[MAX_PATH] = {};
    OpenHandler handler;
};

} // namespace

Scene HandlerScene(Machine& machine, const std::string& name, const HandlerOperation& operation,
                   bool loaded)
{
    return {name,
            [&machine, operation, loaded] {
                return std::make_unique<HandlerAct>(machine, operation, loaded);
            },
            machine.Folder(), true};
}

} // namespace kestraboot::tests
