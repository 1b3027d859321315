// The registered control as a C++ COM host meets it: the type library the registry names, the
// dispatch and event interfaces in it, events through a connection point, and raised errors as
// automation errors.
#include <gtest/gtest.h>
#include <olectl.h>

#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "Automation.h"

namespace kestrin::test {
namespace {

// Releases a COM interface when it leaves scope.
template <class T>
struct Ref {
    T* p = nullptr;
    ~Ref() { if (p) p->Release(); }
    T* operator->() const { return p; }
    T** out() { return &p; }
};

std::wstring nameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
    BSTR name = nullptr;
    info->GetDocumentation(member, &name, nullptr, nullptr, nullptr);
    std::wstring text = name ? name : L"";
    SysFreeString(name);
    return text;
}

std::wstring registryText(const std::wstring& key) {
    wchar_t value[256] = {};
    LONG size = sizeof(value);
    return RegQueryValueW(HKEY_CLASSES_ROOT, key.c_str(), value, &size) == ERROR_SUCCESS ? value : L"";
}

CLSID controlClass() {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(L"Kestrin.iClass", &clsid), S_OK);
    return clsid;
}

std::wstring guidText(const GUID& guid) {
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return text;
}

// The type library the control's registration names, loaded from the registry.
ITypeLib* registeredLibrary() {
    const std::wstring clsid = guidText(controlClass());
    GUID libid{};
    if (FAILED(CLSIDFromString(registryText(L"CLSID\\" + clsid + L"\\TypeLib").c_str(), &libid))) return nullptr;
    ITypeLib* library = nullptr;
    LoadRegTypeLib(libid, 1, 0, LOCALE_NEUTRAL, &library);
    return library;
}

// The coclass's interface with the given implementation flags (default, or default source).
ITypeInfo* implemented(ITypeInfo* coclass, int flags) {
    Ref<ITypeInfo> found;
    TYPEATTR* attr = nullptr;
    coclass->GetTypeAttr(&attr);
    const UINT count = attr->cImplTypes;
    coclass->ReleaseTypeAttr(attr);
    for (UINT i = 0; i < count; ++i) {
        int f = 0;
        HREFTYPE ref = 0;
        if (SUCCEEDED(coclass->GetImplTypeFlags(i, &f)) && f == flags && SUCCEEDED(coclass->GetRefTypeOfImplType(i, &ref))) {
            ITypeInfo* info = nullptr;
            coclass->GetRefTypeInfo(ref, &info);
            return info;
        }
    }
    return nullptr;
}

std::wstring typeName(ITypeInfo* owner, const TYPEDESC& type) {
    switch (type.vt) {
    case VT_BSTR: return L"BSTR";
    case VT_BOOL: return L"BOOL";
    case VT_I4: return L"I4";
    case VT_I8: return L"I8";
    case VT_INT: return L"INT";
    case VT_VOID: return L"void";
    case VT_VARIANT: return L"VARIANT";
    case VT_DISPATCH: return L"IDispatch";
    case VT_PTR: return typeName(owner, *type.lptdesc) + L"*";
    case VT_USERDEFINED: {
        Ref<ITypeInfo> user;
        owner->GetRefTypeInfo(type.hreftype, user.out());
        return user.p ? L"enum " + nameOf(user.p) : L"?";
    }
    default: return L"vt" + std::to_wstring(type.vt);
    }
}

// One member of a dispatch interface as a host's object browser shows it.
struct Member {
    std::wstring name;
    std::wstring signature;  // "result(param, param)" or the property's type with " readonly"
    MEMBERID id = 0;
    bool operator==(const Member&) const = default;
};

std::vector<Member> properties(ITypeInfo* info) {
    std::vector<Member> found;
    TYPEATTR* attr = nullptr;
    info->GetTypeAttr(&attr);
    for (UINT i = 0; i < attr->cVars; ++i) {
        VARDESC* var = nullptr;
        info->GetVarDesc(i, &var);
        found.push_back({nameOf(info, var->memid),
                         typeName(info, var->elemdescVar.tdesc) + ((var->wVarFlags & VARFLAG_FREADONLY) ? L" readonly" : L""),
                         var->memid});
        info->ReleaseVarDesc(var);
    }
    info->ReleaseTypeAttr(attr);
    return found;
}

std::vector<Member> methods(ITypeInfo* info) {
    std::vector<Member> found;
    TYPEATTR* attr = nullptr;
    info->GetTypeAttr(&attr);
    for (UINT i = 0; i < attr->cFuncs; ++i) {
        FUNCDESC* func = nullptr;
        info->GetFuncDesc(i, &func);
        std::wstring signature = typeName(info, func->elemdescFunc.tdesc) + L"(";
        for (SHORT p = 0; p < func->cParams; ++p) {
            const ELEMDESC& param = func->lprgelemdescParam[p];
            if (p) signature += L", ";
            if (param.paramdesc.wParamFlags & PARAMFLAG_FOPT) signature += L"optional ";
            signature += typeName(info, param.tdesc);
        }
        found.push_back({nameOf(info, func->memid), signature + L")", func->memid});
        info->ReleaseFuncDesc(func);
    }
    info->ReleaseTypeAttr(attr);
    return found;
}

std::vector<std::wstring> parameterNames(ITypeInfo* info, const wchar_t* method) {
    LPOLESTR name = const_cast<LPOLESTR>(method);
    MEMBERID id = 0;
    if (FAILED(info->GetIDsOfNames(&name, 1, &id))) return {};
    BSTR names[8] = {};
    UINT count = 0;
    info->GetNames(id, names, 8, &count);
    std::vector<std::wstring> result;
    for (UINT i = 1; i < count; ++i) result.emplace_back(names[i]), SysFreeString(names[i]);
    SysFreeString(names[0]);
    return result;
}

// The type library registration names: the control's own DLL, which carries it as a resource.
std::wstring registeredLibraryFile(ITypeLib* library) {
    TLIBATTR* attr = nullptr;
    if (FAILED(library->GetLibAttr(&attr))) return L"";
    const std::wstring key = L"TypeLib\\" + guidText(attr->guid) + L"\\" + std::to_wstring(attr->wMajorVerNum) + L"." +
                             std::to_wstring(attr->wMinorVerNum) + L"\\0\\" + (sizeof(void*) == 8 ? L"win64" : L"win32");
    library->ReleaseTLibAttr(attr);
    return registryText(key);
}

// The handles of language libraries are as wide as a module handle of this build.
const std::wstring kHandle = sizeof(void*) == 8 ? L"I8" : L"I4";

TEST(TypeLibrary, TheRegisteredLibraryHoldsExactlyTheControlsInterface) {
    Ref<ITypeLib> library;
    library.p = registeredLibrary();
    ASSERT_TRUE(library.p) << "the registry names no loadable type library for Kestrin.iClass";
    const std::filesystem::path file = registeredLibraryFile(library.p);
    // The library registered is the DLL's own resource.
    EXPECT_EQ(_wcsicmp(file.filename().c_str(), L"Kestrin.dll"), 0) << file;
    Ref<ITypeLib> embedded;
    EXPECT_EQ(LoadTypeLibEx(file.c_str(), REGKIND_NONE, embedded.out()), S_OK);
    Ref<ITypeInfo> coclass;
    ASSERT_EQ(library->GetTypeInfoOfGuid(controlClass(), coclass.out()), S_OK);
    Ref<ITypeInfo> face, events;
    face.p = implemented(coclass.p, IMPLTYPEFLAG_FDEFAULT);
    events.p = implemented(coclass.p, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
    ASSERT_TRUE(face.p && events.p);
    EXPECT_EQ(std::make_tuple(nameOf(coclass.p), nameOf(face.p), nameOf(events.p)),
              std::make_tuple(L"iClass", L"_iClass", L"__iClass"));

    const std::vector<std::pair<std::wstring, std::wstring>> expectedProperties = {
        {L"ProjectFile", L"BSTR"}, {L"IifDirectory", L"BSTR"}, {L"PellmarkINI", L"BSTR"},
        {L"CLessLayoutEntered", L"BOOL"}, {L"UseBit", L"BOOL"}, {L"UseHID", L"BOOL"},
        {L"LayoutFile", L"BSTR readonly"}, {L"EncodePath", L"BSTR"}, {L"Saved", L"BOOL readonly"},
        {L"LanguageDLL", kHandle}, {L"CustomLanguageDLL", kHandle}, {L"AppName", L"BSTR"},
        {L"SelectedGrid", L"BSTR readonly"}};
    std::vector<std::pair<std::wstring, std::wstring>> seenProperties;
    for (const Member& p : properties(face.p)) seenProperties.emplace_back(p.name, p.signature);
    EXPECT_EQ(seenProperties, expectedProperties);

    const std::vector<std::pair<std::wstring, std::wstring>> expectedMethods = {
        {L"SetChipType", L"void(enum IClassType)"}, {L"SetAppBoundaries", L"void(BSTR)"}, {L"AddField", L"void()"},
        {L"AddFunction", L"void()"}, {L"AddBitField", L"void()"}, {L"AddBitFunction", L"void()"},
        {L"AddDBUpdateItem", L"void()"}, {L"RemoveItem", L"void()"}, {L"ShowPreview", L"void()"},
        {L"NewLayout", L"void(BOOL)"}, {L"SetProperties", L"void()"}, {L"SaveLayout", L"VARIANT()"},
        {L"SaveiClassAs", L"BOOL()"}, {L"OpenLayout", L"BOOL(BSTR)"}, {L"CloseLayout", L"BOOL()"},
        {L"FetchDBFields", L"BOOL()"}, {L"AddItemOverMultipleTracks", L"void()"}, {L"RemoveDBUpdateItem", L"void()"},
        {L"ShowAbout", L"void()"}, {L"ShowSettings", L"void()"}, {L"EditItem", L"void()"},
        {L"CallGenericFunction", L"void(BSTR, optional BSTR)"}, {L"SetPropertyValue", L"void(BSTR, BSTR)"},
        {L"GetPropertyValue", L"BSTR(BSTR)"}, {L"SetObjectProperty", L"void(BSTR, IDispatch)"},
        {L"GetObjectProperty", L"IDispatch(BSTR)"}};
    std::vector<std::pair<std::wstring, std::wstring>> seenMethods;
    MEMBERID about = 0;
    for (const Member& m : methods(face.p)) {
        seenMethods.emplace_back(m.name, m.signature);
        if (m.name == L"ShowAbout") about = m.id;
    }
    EXPECT_EQ(seenMethods, expectedMethods);
    EXPECT_EQ(about, DISPID_ABOUTBOX);  // containers offer it as the control's About entry
    EXPECT_EQ(parameterNames(face.p, L"CallGenericFunction"), (std::vector<std::wstring>{L"FunctionName", L"ParamList"}));
    EXPECT_EQ(parameterNames(face.p, L"OpenLayout"), std::vector<std::wstring>{L"sFileName"});

    EXPECT_TRUE(properties(events.p).empty());
    EXPECT_EQ(methods(events.p), (std::vector<Member>{{L"Changed", L"void()", 1}, {L"GenericEvent", L"void(BSTR, BSTR)", 2}}));
    EXPECT_EQ(parameterNames(events.p, L"GenericEvent"), (std::vector<std::wstring>{L"sEventName", L"sParamList"}));
}

// What regsvr32 wrote for a container: the control class by both ProgIDs, the server DLL, the
// control and type library marks, and the toolbox picture in the DLL.
TEST(Registration, TheRegistryNamesTheControlItsServerAndItsToolboxPicture) {
    const std::wstring clsid = guidText(controlClass()), key = L"CLSID\\" + clsid;
    EXPECT_EQ(registryText(L"Kestrin.iClass\\CLSID"), clsid);
    EXPECT_EQ(registryText(L"Kestrin.iClass\\CurVer"), L"Kestrin.iClass.1");
    EXPECT_EQ(registryText(L"Kestrin.iClass.1\\CLSID"), clsid);
    EXPECT_EQ(registryText(key + L"\\ProgID"), L"Kestrin.iClass.1");
    EXPECT_EQ(registryText(key + L"\\VersionIndependentProgID"), L"Kestrin.iClass");
    HKEY control = nullptr;
    EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, (key + L"\\Control").c_str(), &control), ERROR_SUCCESS);
    if (control) RegCloseKey(control);
    const std::filesystem::path server = registryText(key + L"\\InprocServer32");
    EXPECT_EQ(_wcsicmp(server.filename().c_str(), L"Kestrin.dll"), 0) << server;
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
        if (iid == IID_IUnknown || iid == IID_IDispatch || iid == events_) {
            *object = this;
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
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

IID eventInterface() {
    Ref<ITypeLib> library;
    library.p = registeredLibrary();
    Ref<ITypeInfo> coclass, events;
    TYPEATTR* attr = nullptr;
    IID iid{};
    if (library.p && SUCCEEDED(library->GetTypeInfoOfGuid(controlClass(), coclass.out())) &&
        (events.p = implemented(coclass.p, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE)) &&
        SUCCEEDED(events->GetTypeAttr(&attr))) {
        iid = attr->guid;
        events->ReleaseTypeAttr(attr);
    }
    return iid;
}

std::wstring fixture(const char* name) {
    return std::filesystem::path(KESTRIN_EXAMPLES).append(name).make_preferred().wstring();
}

TEST(Events, ChangedAndGenericEventReachASinkConnectedToTheEventSource) {
    Automation control(L"Kestrin.iClass");
    ASSERT_TRUE(control.dispatch());
    Ref<IConnectionPointContainer> container;
    ASSERT_EQ(control.dispatch()->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(container.out())),
              S_OK);
    Ref<IConnectionPoint> point;
    const IID events = eventInterface();
    ASSERT_EQ(container->FindConnectionPoint(events, point.out()), S_OK);
    EventSink sink(events);
    DWORD cookie = 0;
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);

    Variant opened, staff(fixture("layouts/Staff.IIF")), noDialog(false);
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
    EXPECT_EQ(opened.vt == VT_BOOL && opened.boolVal == VARIANT_TRUE, true);
    EXPECT_EQ(sink.received, (std::vector<std::wstring>{L"Changed", L"GenericEvent Hallo xyz"}));

    sink.received.clear();
    EXPECT_EQ(control.call(L"NewLayout", {&noDialog}).hr, S_OK);
    EXPECT_EQ(sink.received, (std::vector<std::wstring>{L"Changed", L"GenericEvent Hallo xyz"}));

    // Reading a property changes nothing; a disconnected sink hears nothing more.
    Variant saved;
    EXPECT_EQ(control.get(L"Saved", &saved).hr, S_OK);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    sink.received.clear();
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
    EXPECT_TRUE(sink.received.empty());
}

// A module handle set from COM comes back whole, 64 bits in a 64-bit build; a handle that is not a
// module leaves the control working with its built-in texts.
TEST(Properties, LanguageHandlesAndTextsRoundTripThroughTheDispatchInterface) {
    Automation control(L"Kestrin.iClass");
    ASSERT_TRUE(control.dispatch());
    const long long module = reinterpret_cast<long long>(GetModuleHandleW(L"kernel32.dll"));
    for (const wchar_t* property : {L"LanguageDLL", L"CustomLanguageDLL"}) {
        for (const long long handle : {module, 0x12345678LL, 0LL}) {
            Variant value(handle), back;
            EXPECT_EQ(control.put(property, value).hr, S_OK) << property;
            EXPECT_EQ(control.get(property, &back).hr, S_OK) << property;
            EXPECT_EQ(VariantChangeType(&back, &back, 0, VT_I8), S_OK);
            EXPECT_EQ(back.llVal, handle) << property;
        }
    }
    Variant opened, staff(fixture("layouts/Staff.IIF"));
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
    const std::pair<const wchar_t*, std::wstring> texts[] = {
        {L"ProjectFile", L"C:\\Badges\\Ünïcode 日本.ini"}, {L"IifDirectory", L"C:\\Badges"},
        {L"PellmarkINI", L""}, {L"EncodePath", L"D:\\Encode"}, {L"AppName", L"Badge host"}};
    for (const auto& [property, text] : texts) {
        Variant value(text), back;
        EXPECT_EQ(control.put(property, value).hr, S_OK) << property;
        EXPECT_EQ(control.get(property, &back).hr, S_OK) << property;
        EXPECT_EQ(back.text(), text) << property;
    }
    Variant readOnly(std::wstring(L"X.IIF"));
    EXPECT_NE(control.put(L"LayoutFile", readOnly).hr, S_OK);
}

TEST(Errors, RaisedErrorsReachTheCallerAsAutomationErrors) {
    Automation control(L"Kestrin.iClass");
    ASSERT_TRUE(control.dispatch());
    struct Case {
        const wchar_t* member;
        std::wstring argument;
        WORD code;
        std::wstring description;
    };
    const Case cases[] = {
        {L"OpenLayout", L"", 52, L"No filename given."},
        {L"OpenLayout", fixture("layouts/NoSuchLayout.IIF"), 53, L"File doesn't exist"},
    };
    for (const Case& c : cases) {
        Variant result, argument(c.argument);
        const CallResult outcome = control.call(c.member, {&argument}, &result);
        EXPECT_EQ(std::make_tuple(outcome.hr, outcome.code, outcome.source, outcome.description),
                  std::make_tuple(DISP_E_EXCEPTION, c.code, std::wstring(L"iClass UserControl"), c.description))
            << c.argument;
    }
    // The page collection's lookup error: a one-page card takes no application boundaries.
    Variant noDialog(false), boundaries(std::wstring(L"10|11|12|13|14|15|16|17"));
    EXPECT_EQ(control.call(L"NewLayout", {&noDialog}).hr, S_OK);
    const CallResult lookup = control.call(L"SetAppBoundaries", {&boundaries});
    EXPECT_EQ(std::make_tuple(lookup.hr, lookup.code), std::make_tuple(DISP_E_EXCEPTION, WORD(9)));
    EXPECT_FALSE(lookup.description.empty());
    // After an error the control goes on: the next call succeeds.
    Variant opened, staff(fixture("layouts/Staff.IIF"));
    EXPECT_EQ(control.call(L"OpenLayout", {&staff}, &opened).hr, S_OK);
}

}  // namespace
}  // namespace kestrin::test
