#include "trackers/still_image/twain_session.h"

#include "kestraboot/version.h"

#include <algorithm>
#include <iterator>

namespace kestraboot
{
namespace
{

using namespace twain;

/// The field is zero before, and longer than the text.
template <std::size_t Length>
void Fill(TW_STR32& field, const char (&text)[Length]) noexcept
{
    static_assert(Length <= sizeof field);
    std::ranges::copy(text, std::begin(field));
}

/// The calling application. A source manager may refuse one without a product name.
TW_IDENTITY ApplicationIdentity() noexcept
{
    TW_IDENTITY identity = {};
    identity.Version.MajorNum = 1;
    identity.Version.MinorNum = 703;
    identity.Version.Language = TWLG_USA;
    identity.Version.Country = TWCY_USA;
    Fill(identity.Version.Info, KESTRABOOT_VERSION_TEXT);
    identity.ProtocolMajor = kProtocolMajor;
    identity.ProtocolMinor = kProtocolMinor;
    identity.SupportedGroups = DG_CONTROL | DG_IMAGE;
    Fill(identity.Manufacturer, "Corvane");
    Fill(identity.ProductFamily, "Kestrafetch");
    Fill(identity.ProductName, "Corvane Kestrafetch");
    return identity;
}

DSMENTRYPROC FindEntry(HMODULE sourceManager) noexcept
{
    const FARPROC entry = ::GetProcAddress(sourceManager, MAKEINTRESOURCEA(kDsmEntryOrdinal));
    return reinterpret_cast<DSMENTRYPROC>(reinterpret_cast<void*>(entry));
}

} // namespace

TwainSession::TwainSession() noexcept
    : application(ApplicationIdentity()), sourceManager(::LoadLibraryW(L"twain_32.dll"))
{
    entry = sourceManager ? FindEntry(sourceManager.get()) : nullptr;
    if (entry == nullptr) {
        return;
    }
    parent.reset(::CreateWindowExW(0, L"STATIC", L"TWAINTrackerWindow", WS_POPUP, 20, 20, 200, 200,
                                   nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr));
    HWND parentHandle = parent.get();
    open = Ask(DAT_PARENT, MSG_OPENDSM, static_cast<void*>(&parentHandle)) != TWRC_FAILURE;
}

TwainSession::~TwainSession()
{
    if (entry != nullptr) {
        // Also after a failed opening: closing a manager that is not open is harmless.
        HWND parentHandle = parent.get();
        static_cast<void>(Ask(DAT_PARENT, MSG_CLOSEDSM, static_cast<void*>(&parentHandle)));
    }
}

bool TwainSession::FirstSource(TW_IDENTITY& source) noexcept
{
    return Ask(DAT_IDENTITY, MSG_GETFIRST, &source) == TWRC_SUCCESS;
}

bool TwainSession::NextSource(TW_IDENTITY& source) noexcept
{
    return Ask(DAT_IDENTITY, MSG_GETNEXT, &source) == TWRC_SUCCESS;
}

TW_UINT16 TwainSession::Ask(TW_UINT16 dataArgumentType, TW_UINT16 message, void* data) noexcept
{
    return entry(&application, nullptr, DG_CONTROL, dataArgumentType, message, data);
}

} // namespace kestraboot
