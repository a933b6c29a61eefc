#include "tests/support/source_file.h"

#include "tests/support/sample_application.h"

namespace kestraboot::tests
{
namespace
{

/// Empty if this program does not come from the archive.
std::filesystem::path SourcesOfTheArchive()
{
    const std::filesystem::path programs = std::filesystem::path(OwnExecutablePath()).parent_path();
    // A program that needs the stand-ins is in their folder, one level below the others.
    for (const std::filesystem::path& folder : {programs, programs.parent_path()}) {
        if (std::filesystem::exists(folder / "sources")) {
            return folder / "sources";
        }
    }
    return {};
}

} // namespace

bool FromTheArchive()
{
    return !SourcesOfTheArchive().empty();
}

std::filesystem::path SourceFile(const std::filesystem::path& relative)
{
    const std::filesystem::path sources = SourcesOfTheArchive();
    return (sources.empty() ? std::filesystem::path(KESTRABOOT_SOURCE_TREE) : sources) / relative;
}

} // namespace kestraboot::tests
