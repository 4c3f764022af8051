#include "support/node_model.h"

#include "support/byte_source.h"
#include "support/laws.h"

// Trees of nodes that are made, moved, removed, held and released in any order have the links that
// a model of vectors has.

namespace {

constexpr std::size_t kMostNodes = 64;
constexpr std::size_t kTypes = 6;

void Do(Fuzz::ByteSource& bytes, Fuzz::NodeModel& model) {
    const std::size_t operation = bytes.Below(8);
    if (operation == 0 || model.Size() == 0) {
        if (model.Size() != kMostNodes)
            model.Create(static_cast<std::int32_t>(bytes.Below(kTypes)));
        return;
    }
    const std::size_t first = bytes.Below(model.Size());
    const std::size_t second = bytes.Below(model.Size());
    const std::size_t third = bytes.Below(model.Size());
    if (!model.IsAlive(first) || !model.IsAlive(second) || !model.IsAlive(third)) return;
    switch (operation) {
        case 1:
            return model.Append(first, second);
        case 2:
            return model.InsertAfter(first, second, third);
        case 3:
            return model.InsertBefore(first, second, third);
        case 4:
            return model.Remove(first);
        case 5:
            return model.Release(first);
        case 6:
            return model.Hold(first);
        default:
            if (!model.IsDocument(first)) return;
            return model.SetRoot(first, model.IsElement(second) ? second : model.Size());
    }
}

}  // namespace

void Fuzz::CheckLaws(std::string_view input) {
    NodeModel model;
    for (ByteSource bytes(input); !bytes.IsEmpty();) {
        Do(bytes, model);
        model.RequireAgreement();
    }
}
