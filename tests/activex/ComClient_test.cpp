// The registered control as a C++ COM host meets it: the type library the registry names, the
// dispatch and event interfaces in it, events through a connection point, and raised errors as
// automation errors.
#include <gtest/gtest.h>
#include <olectl.h>

#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Automation.h"

namespace kestrin::test {
namespace {

std::wstring nameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    BSTR name = nullptr;
    info->GetDocumentation(member, &name, nullptr, nullptr, nullptr);
    const std::wstring text = textOf(name);
    SysFreeString(name);
    return text;
}

// The default value of a key under HKEY_CLASSES_ROOT; kNoKey when the key is not there.
const std::wstring kNoKey = L"(no such key)";
std::wstring registryText(const std::wstring& key) {
    wchar_t value[256] = {};
    LONG size = sizeof(value);
    return RegQueryValueW(HKEY_CLASSES_ROOT, key.c_str(), value, &size) == ERROR_SUCCESS ? value : kNoKey;
}

// The type information the control's registration names, as a host's object browser loads it: the
// library from the registry, the control class, its default interface and its default event source.
struct Registered {
    Ref<ITypeLib> library;
    Ref<ITypeInfo> coclass, face, events;
    GUID libid{};
    IID eventsId{};
    Registered() {
        const std::wstring typeLibrary = registryText(L"CLSID\\" + registryText(L"Kestrin.iClass\\CLSID") + L"\\TypeLib");
        CLSID clsid{};
        if (FAILED(CLSIDFromProgID(L"Kestrin.iClass", &clsid)) || FAILED(CLSIDFromString(typeLibrary.c_str(), &libid)) ||
            FAILED(LoadRegTypeLib(libid, 1, 0, LOCALE_NEUTRAL, library.out())) ||
            FAILED(library->GetTypeInfoOfGuid(clsid, coclass.out())))
            return;
        TYPEATTR* attr = nullptr;
        coclass->GetTypeAttr(&attr);
        for (UINT i = 0; i < attr->cImplTypes; ++i) {
            int flags = 0;
            HREFTYPE ref = 0;
            coclass->GetImplTypeFlags(i, &flags);
            coclass->GetRefTypeOfImplType(i, &ref);
            if (flags == IMPLTYPEFLAG_FDEFAULT) coclass->GetRefTypeInfo(ref, face.out());
            if (flags == (IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE)) coclass->GetRefTypeInfo(ref, events.out());
        }
        coclass->ReleaseTypeAttr(attr);
        if (events.p && SUCCEEDED(events->GetTypeAttr(&attr))) eventsId = attr->guid, events->ReleaseTypeAttr(attr);
    }
};

std::wstring typeName(ITypeInfo* owner, const TYPEDESC& type) {
    static const std::map<VARTYPE, std::wstring> names = {{VT_BSTR, L"BSTR"}, {VT_BOOL, L"BOOL"}, {VT_I4, L"I4"},
        {VT_I8, L"I8"}, {VT_VOID, L"void"}, {VT_VARIANT, L"VARIANT"}, {VT_DISPATCH, L"IDispatch"}};
    Ref<ITypeInfo> user;
    if (type.vt == VT_USERDEFINED && SUCCEEDED(owner->GetRefTypeInfo(type.hreftype, user.out())))
        return L"enum " + nameOf(user.p);
    const auto found = names.find(type.vt);
    return found != names.end() ? found->second : L"vt" + std::to_wstring(type.vt);
}

// The members of a dispatch interface in their order, as a host's object browser shows them: first
// the properties, "name: type" with " readonly", then the methods, "name: result(type parameter, ...)".
std::vector<std::wstring> members(ITypeInfo* info) {
    std::vector<std::wstring> found;
    TYPEATTR* attr = nullptr;
    info->GetTypeAttr(&attr);
    for (UINT i = 0; i < attr->cVars; ++i) {
        VARDESC* var = nullptr;
        info->GetVarDesc(i, &var);
        found.push_back(nameOf(info, var->memid) + L": " + typeName(info, var->elemdescVar.tdesc) +
                        ((var->wVarFlags & VARFLAG_FREADONLY) ? L" readonly" : L""));
        info->ReleaseVarDesc(var);
    }
    for (UINT i = 0; i < attr->cFuncs; ++i) {
        FUNCDESC* func = nullptr;
        info->GetFuncDesc(i, &func);
        BSTR names[8] = {};
        UINT count = 0;
        info->GetNames(func->memid, names, 8, &count);
        std::wstring text = std::wstring(names[0] ? names[0] : L"?") + L": " + typeName(info, func->elemdescFunc.tdesc) + L"(";
        for (SHORT p = 0; p < func->cParams; ++p) {
            const ELEMDESC& param = func->lprgelemdescParam[p];
            text += std::wstring(p ? L", " : L"") + ((param.paramdesc.wParamFlags & PARAMFLAG_FOPT) ? L"optional " : L"") +
                    typeName(info, param.tdesc) + L" " + (UINT(p) + 1 < count ? names[p + 1] : L"?");
        }
        found.push_back(text + L")");
        for (BSTR name : names) SysFreeString(name);
        info->ReleaseFuncDesc(func);
    }
    info->ReleaseTypeAttr(attr);
    return found;
}

MEMBERID idOf(ITypeInfo* info, const wchar_t* name) {
    MEMBERID id = MEMBERID_NIL;
    info->GetIDsOfNames(const_cast<LPOLESTR*>(&name), 1, &id);
    return id;
}

// The handles of language libraries are as wide as a module handle of this build.
const std::wstring kHandle = sizeof(void*) == 8 ? L"I8" : L"I4";

TEST(Registration, TheRegistryNamesTheControlItsServerToolboxPictureAndTypeLibraryWithExactlyItsInterface) {
    // What regsvr32 wrote for a container: the control class by both ProgIDs, the server DLL, the
    // control mark, the type library and the toolbox picture in the DLL.
    const std::wstring clsid = registryText(L"Kestrin.iClass\\CLSID"), key = L"CLSID\\" + clsid;
    const std::pair<std::wstring, std::wstring> values[] = {
        {L"Kestrin.iClass\\CurVer", L"Kestrin.iClass.1"}, {L"Kestrin.iClass.1\\CLSID", clsid},
        {key + L"\\ProgID", L"Kestrin.iClass.1"}, {key + L"\\VersionIndependentProgID", L"Kestrin.iClass"}};
    for (const auto& [name, value] : values) EXPECT_EQ(registryText(name), value) << name;
    EXPECT_NE(registryText(key + L"\\Control"), kNoKey);
    const std::filesystem::path server = registryText(key + L"\\InprocServer32");
    EXPECT_EQ(_wcsicmp(server.filename().c_str(), L"Kestrin.dll"), 0) << server;
    const Registered type;
    ASSERT_TRUE(type.face.p && type.events.p) << "the registry names no loadable type library for Kestrin.iClass";
    // The library registered, which loaded above, is the server DLL's own resource.
    BSTR path = nullptr;
    EXPECT_EQ(QueryPathOfRegTypeLib(type.libid, 1, 0, LOCALE_NEUTRAL, &path), S_OK);
    EXPECT_EQ(_wcsicmp(textOf(path).c_str(), server.c_str()), 0) << textOf(path) << " is not " << server;
    SysFreeString(path);
    EXPECT_EQ(std::make_tuple(nameOf(type.coclass.p), nameOf(type.face.p), nameOf(type.events.p)),
              std::make_tuple(L"iClass", L"_iClass", L"__iClass"));
    EXPECT_EQ(members(type.face.p), (std::vector<std::wstring>{
        L"ProjectFile: BSTR", L"IifDirectory: BSTR", L"PellmarkINI: BSTR", L"CLessLayoutEntered: BOOL", L"UseBit: BOOL",
        L"UseHID: BOOL", L"LayoutFile: BSTR readonly", L"EncodePath: BSTR", L"Saved: BOOL readonly",
        L"LanguageDLL: " + kHandle, L"CustomLanguageDLL: " + kHandle, L"AppName: BSTR", L"SelectedGrid: BSTR readonly",
        L"SetChipType: void(enum IClassType sChipType)", L"SetAppBoundaries: void(BSTR sBoundaries)", L"AddField: void()",
        L"AddFunction: void()", L"AddBitField: void()", L"AddBitFunction: void()", L"AddDBUpdateItem: void()",
        L"RemoveItem: void()", L"ShowPreview: void()", L"NewLayout: void(BOOL bShowPropsDlg)", L"SetProperties: void()",
        L"SaveLayout: VARIANT()", L"SaveiClassAs: BOOL()", L"OpenLayout: BOOL(BSTR sFileName)", L"CloseLayout: BOOL()",
        L"FetchDBFields: BOOL()", L"AddItemOverMultipleTracks: void()", L"RemoveDBUpdateItem: void()", L"ShowAbout: void()",
        L"ShowSettings: void()", L"EditItem: void()", L"CallGenericFunction: void(BSTR FunctionName, optional BSTR ParamList)",
        L"SetPropertyValue: void(BSTR PropName, BSTR Value)", L"GetPropertyValue: BSTR(BSTR PropName)",
        L"SetObjectProperty: void(BSTR PropName, IDispatch Value)", L"GetObjectProperty: IDispatch(BSTR PropName)"}));
    EXPECT_EQ(members(type.events.p),
              (std::vector<std::wstring>{L"Changed: void()", L"GenericEvent: void(BSTR sEventName, BSTR sParamList)"}));
    // ShowAbout is the about box's member, which containers offer as the control's About entry.
    EXPECT_EQ(std::make_tuple(idOf(type.face.p, L"ShowAbout"), idOf(type.events.p, L"Changed"),
                              idOf(type.events.p, L"GenericEvent")),
              std::make_tuple(DISPID_ABOUTBOX, 1, 2));
    // "path", 101: the bitmap a toolbox shows, 16 by 15 pixels.
    const std::wstring toolbox = registryText(key + L"\\ToolboxBitmap32");
    ASSERT_NE(toolbox.rfind(L", 101"), std::wstring::npos) << toolbox;
    const HMODULE module = LoadLibraryExW(server.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    ASSERT_NE(module, nullptr);
    const HBITMAP picture = static_cast<HBITMAP>(LoadImageW(module, MAKEINTRESOURCEW(101), IMAGE_BITMAP, 0, 0, 0));
    BITMAP size{};
    EXPECT_TRUE(picture && GetObjectW(picture, sizeof(size), &size));
    EXPECT_EQ(std::make_pair(size.bmWidth, size.bmHeight), std::make_pair(LONG(16), LONG(15)));
    if (picture) DeleteObject(picture);
    FreeLibrary(module);
}

// A host's event sink for __iClass, writing down each event as it arrives. COM objects end by
// Release, never by a destructor through an interface, so interfaces have no virtual destructors.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class EventSink : public IDispatch {
public:
    explicit EventSink(IID events) : events_(events) {}
    std::vector<std::wstring> received;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IDispatch || iid == events_ ? this : nullptr;
        return *object ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
    ULONG STDMETHODCALLTYPE Release() override { return --refs_; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        std::wstring event = id == 1 ? L"Changed" : id == 2 ? L"GenericEvent" : L"event " + std::to_wstring(id);
        for (UINT i = params->cArgs; i-- > 0;)
            event += L" " + (params->rgvarg[i].vt == VT_BSTR ? std::wstring(params->rgvarg[i].bstrVal) : L"?");
        received.push_back(event);
        return S_OK;
    }

private:
    IID events_;
    ULONG refs_ = 1;
};
#pragma GCC diagnostic pop

// Events reach a host's sink through the connection point of the event interface the type library
// names. A module handle set from COM comes back whole, 64 bits in a 64-bit build, and a handle that
// is not a module is kept too. Texts keep their Unicode characters. Raised errors reach the caller as
// automation errors.
TEST(Dispatch, EventsHandlesTextsAndRaisedErrorsReachTheCaller) {
    Automation control(L"Kestrin.iClass");
    ASSERT_TRUE(control.dispatch());
    Ref<IConnectionPointContainer> container;
    ASSERT_EQ(control.dispatch()->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(container.out())),
              S_OK);
    Ref<IConnectionPoint> point;
    const Registered type;
    ASSERT_EQ(container->FindConnectionPoint(type.eventsId, point.out()), S_OK);
    EventSink sink(type.eventsId);
    DWORD cookie = 0;
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    Variant opened, saved, staff(example("layouts/Staff.IIF"));
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
    EXPECT_EQ(std::exchange(sink.received, {}), (std::vector<std::wstring>{L"Changed", L"GenericEvent Hallo xyz"}));
    // Reading a property raises nothing; a disconnected sink hears nothing more.
    EXPECT_EQ(control.get(L"Saved", &saved).hr, S_OK);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
    EXPECT_TRUE(sink.received.empty());

    const long long module = reinterpret_cast<long long>(GetModuleHandleW(L"kernel32.dll"));
    for (const wchar_t* property : {L"LanguageDLL", L"CustomLanguageDLL"}) {
        for (const long long handle : {module, 0LL, 0x12345678LL}) {
            Variant value(handle), back;
            EXPECT_EQ(control.put(property, value).hr, S_OK) << property;
            EXPECT_EQ(control.get(property, &back).hr, S_OK) << property;
            EXPECT_EQ(VariantChangeType(&back, &back, 0, VT_I8), S_OK);
            EXPECT_EQ(back.llVal, handle) << property;
        }
    }
    for (const std::wstring& text : {std::wstring(L"C:\\Badges\\Ünïcode 日本.ini"), std::wstring()}) {
        Variant value(text), back;
        EXPECT_EQ(control.put(L"ProjectFile", value).hr, S_OK);
        EXPECT_EQ(control.get(L"ProjectFile", &back).hr, S_OK);
        EXPECT_EQ(back.text(), text);
    }
    EXPECT_NE(control.put(L"LayoutFile", Variant(std::wstring(L"X.IIF"))).hr, S_OK);

    // The reader's error, and the page collection's lookup error: a one-page card takes no
    // application boundaries.
    Variant result, noName{std::wstring()}, noDialog(false), boundaries(std::wstring(L"10|11|12|13|14|15|16|17"));
    const CallResult reader = control.call(L"OpenLayout", {&noName}, &result);
    EXPECT_EQ(control.call(L"NewLayout", {&noDialog}).hr, S_OK);
    const CallResult lookup = control.call(L"SetAppBoundaries", {&boundaries});
    EXPECT_EQ(std::make_tuple(reader.hr, reader.code, reader.source, reader.description, lookup.hr, lookup.code),
              std::make_tuple(DISP_E_EXCEPTION, WORD(52), std::wstring(L"iClass UserControl"),
                              std::wstring(L"No filename given."), DISP_E_EXCEPTION, WORD(9)));
    EXPECT_FALSE(lookup.description.empty());
}

}  // namespace
}  // namespace kestrin::test
