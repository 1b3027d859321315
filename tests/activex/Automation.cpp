#include "Automation.h"

namespace kestrin::test {

Automation::Automation(const wchar_t* progId) {
    CLSID clsid;
    if (SUCCEEDED(CLSIDFromProgID(progId, &clsid)))
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&dispatch_));
}

Automation::~Automation() {
    if (dispatch_) dispatch_->Release();
}

CallResult Automation::call(const wchar_t* member, std::vector<const VARIANT*> args, VARIANT* result) {
    return invoke(member, DISPATCH_METHOD, std::move(args), result);
}

CallResult Automation::put(const wchar_t* property, const VARIANT& value) {
    return invoke(property, DISPATCH_PROPERTYPUT, {&value}, nullptr);
}

CallResult Automation::get(const wchar_t* property, VARIANT* value) {
    return invoke(property, DISPATCH_PROPERTYGET, {}, value);
}

CallResult Automation::invoke(const wchar_t* member, WORD flags, std::vector<const VARIANT*> args, VARIANT* result) {
    CallResult outcome;
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR name = const_cast<LPOLESTR>(member);
    if (!dispatch_ || FAILED(outcome.hr = dispatch_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id)))
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
        if (error.bstrSource) outcome.source.assign(error.bstrSource, SysStringLen(error.bstrSource));
        if (error.bstrDescription)
            outcome.description.assign(error.bstrDescription, SysStringLen(error.bstrDescription));
        SysFreeString(error.bstrSource);
        SysFreeString(error.bstrDescription);
        SysFreeString(error.bstrHelpFile);
    }
    return outcome;
}

}  // namespace kestrin::test
