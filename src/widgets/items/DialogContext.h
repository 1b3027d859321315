#pragma once

namespace kestrin {

class CIClass;
class RecordArray;
class HostFieldList;
class Translator;
class Prompter;

// What an item dialog works on, handed in by its caller (the control, a test, the harness).
// The dialog writes its results into the records; the caller rebuilds its grids afterwards.
struct DialogContext {
    CIClass* card = nullptr;
    RecordArray* records = nullptr;
    const HostFieldList* fields = nullptr;
    const Translator* translator = nullptr;
    Prompter* prompter = nullptr;
};

}  // namespace kestrin
