// Any body of a reply: what it says is good or an error, never both, and its videos can be shown.
#include "HostingReply.h"
#include "VideosListModel.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const HostingReply reply = HostingReply::parse(
        QByteArray(reinterpret_cast<const char *>(data), int(size)));
    if (reply.remedy() != HostingReply::Remedy::None && reply.isGood())
        std::abort();
    VideosListModel model;
    model.add(reply.list);
    if (model.rowCount() != reply.list.size())
        std::abort();
    const auto roles = model.roleNames().keys();
    for (int row = 0; row < model.rowCount(); ++row) {
        for (const int role : roles) {
            const QVariant value = model.data(model.index(row), role);
            if (role == VideosListModel::PresetsRole ? value.userType() != QMetaType::QVariantList
                                                     : value.userType() != QMetaType::QString)
                std::abort();
        }
    }
    return 0;
}
