#include "HostBridge.h"

#include "base/ProductInfo.h"
#include "base/Prompter.h"

namespace kestrin {

bool acceptsBridgeName(const std::string& name, const std::string& appName, Prompter& prompter) {
    if (name == "1") return true;
    const std::string message =
        "This program is using a server program that is out-of-date. Please contact your vendor and supply the "
        "following information: \r\n"
        "App version: " + std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + ";" +
        std::to_string(kVersionRevision) + "\r\n" +
        "Server program name: " + kProgramName + ";\r\n" +
        "Called function is: " + name + ".";
    prompter.tell(Icon::Exclamation, message, appName);
    return false;
}

}  // namespace kestrin
