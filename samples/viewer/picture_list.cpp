#include "picture_list.h"

#include <cwchar>

namespace
{

bool IsPicture(const std::filesystem::path& file)
{
    const std::wstring extension = file.extension().wstring();
    for (const wchar_t* const known : {L".jpg", L".jpeg", L".png", L".tif", L".tiff"}) {
        if (_wcsicmp(extension.c_str(), known) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::filesystem::path> ListPictures(const std::wstring& drive)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> pictures;
    std::error_code error;
    fs::recursive_directory_iterator entry(drive + L'\\', fs::directory_options::skip_permission_denied,
                                           error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code unknown;
        if (entry->is_regular_file(unknown) && IsPicture(entry->path())) {
            pictures.push_back(entry->path());
        }
    }
    return pictures;
}
