#pragma once
// A COM caller's view of the registered control, as a C++ host writes it: the control created by
// its ProgID, members called by name through IDispatch, raised errors read from EXCEPINFO.
#include <oaidl.h>
#include <ocidl.h>
#include <windows.h>

#include <string>
#include <vector>

namespace kestrin::test {

// A VARIANT that clears itself.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    explicit Variant(const std::wstring& text) : Variant() { vt = VT_BSTR, bstrVal = SysAllocString(text.c_str()); }
    explicit Variant(bool value) : Variant() { vt = VT_BOOL, boolVal = value ? VARIANT_TRUE : VARIANT_FALSE; }
    explicit Variant(long long value) : Variant() { vt = VT_I8, llVal = value; }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(this); }
    std::wstring text() const { return vt == VT_BSTR && bstrVal ? std::wstring(bstrVal, SysStringLen(bstrVal)) : L""; }
};

// What a call ended with: its HRESULT, and for an automation error the EXCEPINFO's parts.
struct CallResult {
    HRESULT hr = E_FAIL;
    WORD code = 0;
    std::wstring source;
    std::wstring description;
};

class Automation {
public:
    // Creates the control registered under progId; dispatch() is null when that fails.
    explicit Automation(const wchar_t* progId);
    ~Automation();
    Automation(const Automation&) = delete;
    Automation& operator=(const Automation&) = delete;

    IDispatch* dispatch() const { return dispatch_; }
    // Calls a method (arguments in their declared order); result receives its value.
    CallResult call(const wchar_t* member, std::vector<const VARIANT*> args = {}, VARIANT* result = nullptr);
    CallResult put(const wchar_t* property, const VARIANT& value);
    CallResult get(const wchar_t* property, VARIANT* value);

private:
    CallResult invoke(const wchar_t* member, WORD flags, std::vector<const VARIANT*> args, VARIANT* result);
    IDispatch* dispatch_ = nullptr;
};

}  // namespace kestrin::test
