// A DLL that contains libstdc++ must free what libstdc++ allocated when it is loaded: 72 KB for
// exceptions that are thrown without memory. Otherwise each load and unload leaves them behind in the
// host.

namespace __gnu_cxx
{
void __freeres() noexcept; // libstdc++, libsupc++/eh_alloc.cc; no header declares it
}

namespace
{

struct AtUnload {
    AtUnload() = default;
    AtUnload(const AtUnload&) = delete;
    AtUnload& operator=(const AtUnload&) = delete;
    ~AtUnload() { __gnu_cxx::__freeres(); }
};
const AtUnload atUnload;

} // namespace
