#pragma once
// A COM caller's view of the registered control, as a C++ host writes it: the control created by
// its ProgID, members called by name through IDispatch, raised errors read from EXCEPINFO.
#include <oaidl.h>
#include <ocidl.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kestrin::test {

// Releases a COM interface when it leaves scope.
template <class T>
struct Ref {
    T* p = nullptr;
    ~Ref() { if (p) p->Release(); }
    T* operator->() const { return p; }
    T** out() { return &p; }
};

// The text of a BSTR, empty for none.
inline std::wstring textOf(BSTR text) { return text ? std::wstring(text, SysStringLen(text)) : L""; }

// A VARIANT that clears itself.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    explicit Variant(const std::wstring& text) : Variant() { vt = VT_BSTR, bstrVal = SysAllocString(text.c_str()); }
    explicit Variant(bool value) : Variant() { vt = VT_BOOL, boolVal = value ? VARIANT_TRUE : VARIANT_FALSE; }
    explicit Variant(long long value) : Variant() { vt = VT_I8, llVal = value; }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(this); }
    std::wstring text() const { return vt == VT_BSTR ? textOf(bstrVal) : L""; }
};

// What a call ended with: its HRESULT, and for an automation error the EXCEPINFO's parts.
struct CallResult {
    HRESULT hr = E_FAIL;
    WORD code = 0;
    std::wstring source, description;
};

class Automation {
public:
    // Creates the control registered under progId; dispatch() is null when that fails.
    explicit Automation(const wchar_t* progId) {
        CLSID clsid;
        if (SUCCEEDED(CLSIDFromProgID(progId, &clsid)))
            CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(dispatch_.out()));
    }
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    IDispatch* dispatch() const { return dispatch_.p; }
    // Calls a method (arguments in their declared order); result receives its value.
    CallResult call(const wchar_t* member, std::vector<const VARIANT*> args = {}, VARIANT* result = nullptr) {
        return invoke(member, DISPATCH_METHOD, std::move(args), result);
    }
    CallResult put(const wchar_t* property, const VARIANT& value) { return invoke(property, DISPATCH_PROPERTYPUT, {&value}); }
    CallResult get(const wchar_t* property, VARIANT* value) { return invoke(property, DISPATCH_PROPERTYGET, {}, value); }

private:
    CallResult invoke(const wchar_t* member, WORD flags, std::vector<const VARIANT*> args, VARIANT* result = nullptr) {
        CallResult outcome;
        DISPID id = DISPID_UNKNOWN;
        if (!dispatch_.p ||
            FAILED(outcome.hr = dispatch_->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(&member), 1, LOCALE_USER_DEFAULT, &id)))
            return outcome;
        // IDispatch takes the arguments last first.
        std::vector<VARIANT> reversed;
        for (auto arg = args.rbegin(); arg != args.rend(); ++arg) reversed.push_back(**arg);
        DISPID named = DISPID_PROPERTYPUT;
        DISPPARAMS params{reversed.data(), flags == DISPATCH_PROPERTYPUT ? &named : nullptr, UINT(reversed.size()),
                          flags == DISPATCH_PROPERTYPUT ? 1u : 0u};
        EXCEPINFO error{};
        outcome.hr = dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, &error, nullptr);
        if (outcome.hr == DISP_E_EXCEPTION) {
            outcome.code = error.wCode;
            outcome.source = textOf(error.bstrSource);
            outcome.description = textOf(error.bstrDescription);
            for (BSTR text : {error.bstrSource, error.bstrDescription, error.bstrHelpFile}) SysFreeString(text);
        }
        return outcome;
    }
    Ref<IDispatch> dispatch_;
};

// A file of the examples folder as a Windows host names it.
inline std::wstring example(const char* name) {
    return std::filesystem::path(KESTRIN_EXAMPLES).append(name).make_preferred().wstring();
}

}  // namespace kestrin::test
