#include "platform/oledb.h"

#include <windows.h>
// The OLE DB headers want windows.h first.
#include <oledb.h>

#include <array>
#include <cstddef>
#include <utility>

#include "platform/windows/wide.h"

namespace platform {
namespace {

// The OLE DB root enumerator (OLE DB reference, "Enumerating data sources").
constexpr CLSID kRootEnumerator = {
    0xC8B522D0, 0x5CF3, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};

// Columns of the sources rowset.
constexpr DBORDINAL kName = 1;
constexpr DBORDINAL kDescription = 3;

constexpr std::size_t kTextUnits = 1024;

// COM on the calling thread, for as long as this lives.
class ComSession {
public:
    ComSession() : initialised_(SUCCEEDED(::CoInitialize(nullptr))) {}
    ComSession(const ComSession&) = delete;
    ComSession& operator=(const ComSession&) = delete;
    ~ComSession() {
        if (initialised_) ::CoUninitialize();
    }

private:
    const bool initialised_;
};

// Owns a reference to a COM object.
template <class Interface>
class ComReference {
public:
    ComReference() = default;
    ComReference(const ComReference&) = delete;
    ComReference& operator=(const ComReference&) = delete;
    ~ComReference() {
        if (object_ != nullptr) object_->Release();
    }
    Interface* operator->() const { return object_; }
    Interface* Get() const { return object_; }
    template <class Pointer>
    Pointer* Address() {
        return reinterpret_cast<Pointer*>(&object_);
    }

private:
    Interface* object_ = nullptr;
};

// What one row of the sources rowset delivers.
struct Source {
    DBSTATUS name_status;
    DBSTATUS description_status;
    std::array<wchar_t, kTextUnits> name;
    std::array<wchar_t, kTextUnits> description;
};

DBBINDING TextBinding(DBORDINAL column, std::size_t value, std::size_t status) {
    DBBINDING binding{};
    binding.iOrdinal = column;
    binding.obValue = value;
    binding.obStatus = status;
    binding.dwPart = DBPART_VALUE | DBPART_STATUS;
    binding.dwMemOwner = DBMEMOWNER_CLIENTOWNED;
    binding.cbMaxLen = kTextUnits * sizeof(wchar_t);
    binding.wType = DBTYPE_WSTR;
    return binding;
}

String TextOf(DBSTATUS status, const std::array<wchar_t, kTextUnits>& text) {
    const bool there = status == DBSTATUS_S_OK || status == DBSTATUS_S_TRUNCATED;
    return there ? String(reinterpret_cast<const char16_t*>(text.data())) : String{};
}

HRESULT OpenRowset(ComReference<IRowset>& rowset) {
    ComReference<ISourcesRowset> enumerator;
    const HRESULT created = ::CoCreateInstance(kRootEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                                               IID_ISourcesRowset, enumerator.Address<void*>());
    if (FAILED(created)) return created;
    return enumerator->GetSourcesRowset(nullptr, IID_IRowset, 0, nullptr,
                                        rowset.Address<IUnknown*>());
}

HRESULT ReadRows(IRowset& rowset, HACCESSOR accessor, std::vector<OledbProvider>& providers) {
    for (;;) {
        HROW row = DB_NULL_HROW;
        HROW* rows = &row;
        DBCOUNTITEM obtained = 0;
        const HRESULT fetched = rowset.GetNextRows(DB_NULL_HCHAPTER, 0, 1, &obtained, &rows);
        if (FAILED(fetched) || obtained == 0) return FAILED(fetched) ? fetched : S_OK;
        Source source{};
        const HRESULT read = rowset.GetData(row, accessor, &source);
        rowset.ReleaseRows(1, &row, nullptr, nullptr, nullptr);
        if (FAILED(read)) return read;
        providers.push_back({TextOf(source.name_status, source.name),
                             TextOf(source.description_status, source.description)});
    }
}

HRESULT ListProviders(std::vector<OledbProvider>& providers) {
    ComReference<IRowset> rowset;
    HRESULT result = OpenRowset(rowset);
    if (FAILED(result)) return result;
    ComReference<IAccessor> accessors;
    result = rowset->QueryInterface(IID_IAccessor, accessors.Address<void*>());
    if (FAILED(result)) return result;
    const std::array<DBBINDING, 2> bindings{
        TextBinding(kName, offsetof(Source, name), offsetof(Source, name_status)),
        TextBinding(kDescription, offsetof(Source, description),
                    offsetof(Source, description_status))};
    HACCESSOR accessor = DB_NULL_HACCESSOR;
    result = accessors->CreateAccessor(DBACCESSOR_ROWDATA, bindings.size(), bindings.data(),
                                       sizeof(Source), &accessor, nullptr);
    if (FAILED(result)) return result;
    result = ReadRows(*rowset.Get(), accessor, providers);
    accessors->ReleaseAccessor(accessor, nullptr);
    return result;
}

}  // namespace

std::uint32_t ListOledbProviders(std::vector<OledbProvider>& providers) {
    const ComSession com;
    const HRESULT result = ListProviders(providers);
    return FAILED(result) ? static_cast<std::uint32_t>(result) : 0;
}

}  // namespace platform
