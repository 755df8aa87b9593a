// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_sane.h"

#include <cstring>
#include <optional>
#include <vector>

namespace folidex::test {

namespace {

/// Who lets a call hang lets it go, too; should that fail, it goes on by itself, later than
/// anybody waits for it who is to give up.
constexpr std::chrono::seconds kLongestHang{90};

struct Described {
    SANE_Option_Descriptor descriptor{};
    std::vector<SANE_String_Const> choices;
};

struct OpenDevice {
    std::size_t device = 0;
    std::optional<ScriptedFrame> frame;
    qsizetype given = 0;
};

void describe(const ScriptedOption& option, Described& described) {
    for (const QByteArray& choice : option.choices)
        described.choices.push_back(choice.constData());
    described.choices.push_back(nullptr);
    SANE_Option_Descriptor& descriptor = described.descriptor;
    descriptor.name = option.name.constData();
    descriptor.type = option.type;
    descriptor.unit = option.unit;
    descriptor.size = static_cast<SANE_Int>(option.value.size());
    descriptor.cap = SANE_CAP_SOFT_SELECT | SANE_CAP_SOFT_DETECT;
    if (!option.choices.isEmpty()) {
        descriptor.constraint_type = SANE_CONSTRAINT_STRING_LIST;
        descriptor.constraint.string_list = described.choices.data();
    }
}

} // namespace

struct ScriptedSane::Script {
    std::mutex mutex;
    std::condition_variable changed;
    QStringList calls;
    QString hangs_at;
    bool heeds_cancel = false;
    bool hanging = false;
    std::deque<ScriptedDevice> devices;
    std::deque<std::deque<Described>> options;
    std::deque<OpenDevice> handles;
    std::vector<SANE_Device> listed_devices;
    std::vector<const SANE_Device*> listed;

    /// Notes a call and hangs where it is to. What the call does then is done under the lock that
    /// comes back: sane_cancel may be called from another thread than the rest.
    std::unique_lock<std::mutex> enter(const QString& call) {
        std::unique_lock lock(mutex);
        calls.append(call);
        if (hangs_at == call) {
            hanging = true;
            changed.notify_all();
            if (!changed.wait_for(lock, kLongestHang, [this] { return hangs_at.isEmpty(); }))
                hangs_at.clear();
            hanging = false;
        }
        return lock;
    }
    static OpenDevice& at(SANE_Handle handle) { return *static_cast<OpenDevice*>(handle); }

    SANE_Status list(const SANE_Device*** list, bool local_only) {
        const auto lock =
            enter(local_only ? QStringLiteral("list local") : QStringLiteral("list all"));
        listed_devices.clear();
        for (const ScriptedDevice& device : devices)
            if (device.local || !local_only)
                listed_devices.push_back({device.name.constData(), device.vendor.constData(),
                                          device.model.constData(), device.type.constData()});
        listed.clear();
        for (const SANE_Device& device : listed_devices)
            listed.push_back(&device);
        listed.push_back(nullptr);
        *list = listed.data();
        return SANE_STATUS_GOOD;
    }

    SANE_Status open(SANE_String_Const name, SANE_Handle* handle) {
        const auto lock = enter(QStringLiteral("open"));
        for (std::size_t k = 0; k < devices.size(); ++k)
            if (devices[k].name == name) {
                if (devices[k].open != SANE_STATUS_GOOD)
                    return devices[k].open;
                handles.push_back({k, std::nullopt, 0});
                *handle = &handles.back();
                return SANE_STATUS_GOOD;
            }
        return SANE_STATUS_INVAL;
    }

    const SANE_Option_Descriptor* descriptor(SANE_Handle handle, SANE_Int index) {
        static const SANE_Option_Descriptor count{"",
                                                  "",
                                                  "",
                                                  SANE_TYPE_INT,
                                                  SANE_UNIT_NONE,
                                                  sizeof(SANE_Word),
                                                  SANE_CAP_SOFT_DETECT,
                                                  SANE_CONSTRAINT_NONE,
                                                  {}};
        if (index == 0)
            return &count;
        auto& described = options[at(handle).device];
        const auto place = static_cast<std::size_t>(index - 1);
        return place < described.size() ? &described[place].descriptor : nullptr;
    }

    SANE_Status control(SANE_Handle handle, SANE_Int index, SANE_Action action, void* value) {
        const std::lock_guard lock(mutex);
        auto& all = devices[at(handle).device].options;
        if (index == 0) {
            const auto count = static_cast<SANE_Int>(all.size() + 1);
            std::memcpy(value, &count, sizeof count);
            return SANE_STATUS_GOOD;
        }
        ScriptedOption& option = all[static_cast<std::size_t>(index - 1)];
        const auto size = static_cast<std::size_t>(option.value.size());
        if (action == SANE_ACTION_GET_VALUE)
            std::memcpy(value, option.value.constData(), size);
        else
            std::memcpy(option.value.data(), value, size);
        return SANE_STATUS_GOOD;
    }

    QByteArray text(std::size_t device, const QByteArray& name) const {
        for (const ScriptedOption& option : devices[device].options)
            if (option.name == name)
                return option.type == SANE_TYPE_STRING ? QByteArray(option.value.constData())
                                                       : option.value;
        return {};
    }

    SANE_Status start(SANE_Handle handle) {
        const auto lock = enter(QStringLiteral("start"));
        OpenDevice& open = at(handle);
        ScriptedDevice& device = devices[open.device];
        const QByteArray source = text(open.device, "source");
        const bool feeds =
            source.contains("ADF") || source.contains("Feeder") || device.type.contains("sheetfed");
        // A page that broke off must be left by cancel before the next one.
        if (open.frame && open.frame->ending != SANE_STATUS_EOF)
            return SANE_STATUS_DEVICE_BUSY;
        auto& frames = feeds ? device.feeder : device.glass;
        if (frames.empty())
            return SANE_STATUS_NO_DOCS;
        ScriptedFrame frame = frames.front();
        frames.pop_front();
        if (frame.start != SANE_STATUS_GOOD)
            return frame.start;
        open.frame = std::move(frame);
        open.given = 0;
        return SANE_STATUS_GOOD;
    }

    SANE_Status parameters(SANE_Handle handle, SANE_Parameters* parameters) {
        const std::lock_guard lock(mutex);
        if (!at(handle).frame)
            return SANE_STATUS_CANCELLED;
        *parameters = at(handle).frame->parameters;
        return SANE_STATUS_GOOD;
    }

    SANE_Status read(SANE_Handle handle, SANE_Byte* data, SANE_Int size, SANE_Int* got) {
        const auto lock = enter(QStringLiteral("read"));
        OpenDevice& open = at(handle);
        *got = 0;
        if (!open.frame)
            return SANE_STATUS_CANCELLED;
        const qsizetype left = open.frame->bytes.size() - open.given;
        if (left == 0)
            return open.frame->ending;
        qsizetype portion = qMin<qsizetype>(left, size);
        if (open.frame->portion > 0)
            portion = qMin<qsizetype>(portion, open.frame->portion);
        std::memcpy(data, open.frame->bytes.constData() + open.given,
                    static_cast<std::size_t>(portion));
        open.given += portion;
        *got = static_cast<SANE_Int>(portion);
        return SANE_STATUS_GOOD;
    }

    void cancel(SANE_Handle handle) {
        const auto lock = enter(QStringLiteral("cancel"));
        if (hanging && !heeds_cancel)
            return;
        at(handle).frame.reset();
        if (hanging) {
            hangs_at.clear();
            changed.notify_all();
        }
    }
};

ScriptedFrame gray_frame(int width, int rows, char sample) {
    ScriptedFrame frame;
    frame.parameters = {SANE_FRAME_GRAY, SANE_TRUE, width, width, rows, 8};
    frame.bytes = QByteArray(qsizetype{width} * rows, sample);
    return frame;
}

ScriptedFrame failing_start(SANE_Status status) {
    ScriptedFrame frame;
    frame.start = status;
    return frame;
}

ScriptedOption text_option(const QByteArray& name, const QList<QByteArray>& choices) {
    QByteArray value = choices.value(0);
    value.resize(64, '\0');
    return {name, SANE_TYPE_STRING, SANE_UNIT_NONE, choices, value};
}

ScriptedOption number_option(const QByteArray& name, SANE_Unit unit, int value) {
    const SANE_Word word = value;
    QByteArray bytes(sizeof word, '\0');
    std::memcpy(bytes.data(), &word, sizeof word);
    return {name, SANE_TYPE_INT, unit, {}, bytes};
}

ScriptedOption switch_option(const QByteArray& name) {
    return {name, SANE_TYPE_BOOL, SANE_UNIT_NONE, {}, QByteArray(sizeof(SANE_Bool), '\0')};
}

ScriptedSane::ScriptedSane() : script_(std::make_shared<Script>()) {}

ScriptedSane::~ScriptedSane() {
    release();
}

SaneApi ScriptedSane::api() const {
    const auto script = script_;
    SaneApi api;
    api.init = [script, status = init](SANE_Int*, SANE_Auth_Callback) {
        script->enter(QStringLiteral("init"));
        return status;
    };
    api.exit = [script] { script->enter(QStringLiteral("exit")); };
    api.get_devices = [script, status = listing](const SANE_Device*** list, SANE_Bool local_only) {
        const SANE_Status listed = script->list(list, local_only != SANE_FALSE);
        return status == SANE_STATUS_GOOD ? listed : status;
    };
    api.open = [script](SANE_String_Const name, SANE_Handle* handle) {
        return script->open(name, handle);
    };
    api.close = [script](SANE_Handle) { script->enter(QStringLiteral("close")); };
    api.get_option_descriptor = [script](SANE_Handle handle, SANE_Int option) {
        return script->descriptor(handle, option);
    };
    api.control_option = [script](SANE_Handle handle, SANE_Int option, SANE_Action action,
                                  void* value, SANE_Int*) {
        return script->control(handle, option, action, value);
    };
    api.get_parameters = [script](SANE_Handle handle, SANE_Parameters* parameters) {
        return script->parameters(handle, parameters);
    };
    api.start = [script](SANE_Handle handle) { return script->start(handle); };
    api.read = [script](SANE_Handle handle, SANE_Byte* data, SANE_Int size, SANE_Int* got) {
        return script->read(handle, data, size, got);
    };
    api.cancel = [script](SANE_Handle handle) { script->cancel(handle); };
    api.strstatus = sane_strstatus;
    return api;
}

ScriptedDevice& ScriptedSane::add(const ScriptedDevice& device) {
    script_->devices.push_back(device);
    auto& described = script_->options.emplace_back();
    for (const ScriptedOption& option : script_->devices.back().options)
        describe(option, described.emplace_back());
    return script_->devices.back();
}

void ScriptedSane::hang(const QString& call, bool heeds_cancel) {
    const std::lock_guard lock(script_->mutex);
    script_->hangs_at = call;
    script_->heeds_cancel = heeds_cancel;
}

void ScriptedSane::release() {
    const std::lock_guard lock(script_->mutex);
    script_->hangs_at.clear();
    script_->changed.notify_all();
}

bool ScriptedSane::hanging() const {
    const std::lock_guard lock(script_->mutex);
    return script_->hanging;
}

QStringList ScriptedSane::calls() const {
    const std::lock_guard lock(script_->mutex);
    return script_->calls;
}

QByteArray ScriptedSane::option(const QByteArray& name) const {
    const std::lock_guard lock(script_->mutex);
    return script_->text(0, name);
}

} // namespace folidex::test
