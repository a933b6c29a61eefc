// A host as a maker would begin it: prints what it was told and how many applications there are.
#include <kestraboot/kestraboot.h>

#include <cstdio>

int main()
{
    CKestraBootCommandHandler handler;
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    handler.LoadInformation();
    std::vector<appInfo_tag> all;
    if (!handler.GetAllApplicationInfo(all) || words.size() != 1) {
        return 1;
    }
    std::printf("%ls, %zu applications\n", words[0].c_str(), all.size());
    return 0;
}
