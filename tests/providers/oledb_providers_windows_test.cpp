// The list of OLE DB providers, with an enumerator of the tests' own in place of the system's,
// which a bare system does not have.
#include "providers/oledb_providers.h"

#include <gtest/gtest.h>
#include <windows.h>
// The OLE DB headers want windows.h first.
#include <oledb.h>
#include <oledberr.h>

#include <array>
#include <cstring>

#include "support/one_step.h"

namespace {

constexpr CLSID kRootEnumerator = {
    0xC8B522D0, 0x5CF3, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};

// The columns of a sources rowset: name, parse name, description; null is NULL.
using Source = std::array<const wchar_t*, 3>;
constexpr std::array<Source, 3> kSources{{{L"First", L"{1}", L"The first provider"},
                                          {L"Zweiter \x00FC", L"{2}", nullptr},
                                          {L"", L"{3}", L""}}};

// The objects live as long as the test program and count no references.
template <class... Interfaces>
class ComObject : public Interfaces... {
public:
    ULONG WINAPI AddRef() override { return 1; }
    ULONG WINAPI Release() override { return 1; }
};

class Rowset final : public ComObject<IRowset, IAccessor> {
public:
    HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
        *object = id == IID_IAccessor ? static_cast<void*>(static_cast<IAccessor*>(this))
                                      : static_cast<void*>(static_cast<IRowset*>(this));
        return S_OK;
    }
    HRESULT WINAPI CreateAccessor(DBACCESSORFLAGS, DBCOUNTITEM count, const DBBINDING* bindings,
                                  DBLENGTH, HACCESSOR* accessor, DBBINDSTATUS*) override {
        bindings_.assign(bindings, bindings + count);
        *accessor = 1;
        return S_OK;
    }
    HRESULT WINAPI GetNextRows(HCHAPTER, DBROWOFFSET, DBROWCOUNT, DBCOUNTITEM* obtained,
                               HROW** rows) override {
        *obtained = next_ < kSources.size() ? 1 : 0;
        if (*obtained == 0) return DB_S_ENDOFROWSET;
        **rows = ++next_;
        return S_OK;
    }
    HRESULT WINAPI GetData(HROW row, HACCESSOR, void* data) override {
        auto* const bytes = static_cast<std::byte*>(data);
        for (const DBBINDING& binding : bindings_) {
            const wchar_t* text = kSources[row - 1][binding.iOrdinal - 1];
            const DBSTATUS status = text == nullptr ? DBSTATUS_S_ISNULL : DBSTATUS_S_OK;
            std::memcpy(bytes + binding.obStatus, &status, sizeof(status));
            if (text == nullptr) continue;
            std::memcpy(bytes + binding.obValue, text, (wcslen(text) + 1) * sizeof(wchar_t));
        }
        return S_OK;
    }
    HRESULT WINAPI ReleaseRows(DBCOUNTITEM, const HROW*, DBROWOPTIONS*, DBREFCOUNT*,
                               DBROWSTATUS*) override {
        return S_OK;
    }
    HRESULT WINAPI ReleaseAccessor(HACCESSOR, DBREFCOUNT*) override { return S_OK; }
    HRESULT WINAPI AddRefAccessor(HACCESSOR, DBREFCOUNT*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetBindings(HACCESSOR, DBACCESSORFLAGS*, DBCOUNTITEM*, DBBINDING**) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI AddRefRows(DBCOUNTITEM, const HROW*, DBREFCOUNT*, DBROWSTATUS*) override {
        return E_NOTIMPL;
    }
    HRESULT WINAPI RestartPosition(HCHAPTER) override { return E_NOTIMPL; }

private:
    std::vector<DBBINDING> bindings_;
    std::size_t next_ = 0;
};

class Enumerator final : public ComObject<ISourcesRowset, IClassFactory> {
public:
    HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
        *object = id == IID_ISourcesRowset ? static_cast<void*>(static_cast<ISourcesRowset*>(this))
                                           : static_cast<void*>(static_cast<IClassFactory*>(this));
        return S_OK;
    }
    HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** object) override {
        return QueryInterface(id, object);
    }
    HRESULT WINAPI LockServer(BOOL) override { return S_OK; }
    HRESULT WINAPI GetSourcesRowset(IUnknown*, REFIID id, ULONG, DBPROPSET*,
                                    IUnknown** rowset) override {
        return rowset_.QueryInterface(id, reinterpret_cast<void**>(rowset));
    }

private:
    Rowset rowset_;
};

TEST(OledbProviders, AreThoseOfTheRootEnumerator) {
    testing_support::OneStep step;
    const SectionSettings settings = step.With(Section::Source, {});
    DataProviders::OledbProviders source;
    Enumerator enumerator;
    ASSERT_EQ(::CoInitialize(nullptr), S_OK);
    DWORD registration = 0;
    IClassFactory* const factory = &enumerator;
    ASSERT_EQ(::CoRegisterClassObject(kRootEnumerator, factory, CLSCTX_INPROC_SERVER,
                                      REGCLS_MULTIPLEUSE, &registration),
              S_OK);
    String error;
    RowSet rows;
    EXPECT_TRUE(source.Open(error, settings, rows)) << ToUtf8(error);
    ::CoRevokeClassObject(registration);
    ::CoUninitialize();
    EXPECT_EQ(testing_support::ColumnNames(rows), "Name|Description|");
    const std::vector<std::string> expected{"First|The first provider|", "Zweiter \xC3\xBC||",
                                            "||"};
    EXPECT_EQ(testing_support::FetchAll(source, rows), expected);
}

}  // namespace
