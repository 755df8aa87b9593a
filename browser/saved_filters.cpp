// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "app/preferences.h"
#include "app/process_values.h"
#include "browser/frmMain.h"
#include "common/day_number.h"
#include "common/drop_menu.h"
#include "common/error_trap.h"
#include "common/message_box.h"
#include "common/pop_up_menu.h"
#include "controls/date_picker.h"
#include "controls/grid.h"
#include "controls/tag_combo.h"
#include "data/link_numbers.h"

#include <QCheckBox>
#include <QSet>
#include <QSignalBlocker>

namespace folidex {

namespace {

// Day numbers below this count as a date that was never stored.
constexpr double kFirstStoredDay = 10;

PreferencesElement root() {
    Preferences().move_to_root();
    return Preferences().cursor();
}

// The flags of the saved filter are Tag and a number, those of a profile tag and a number.
PreferencesElement saved_flags() {
    return root()
        .child_or_new(QStringLiteral("tagprofiles"))
        .child_or_new(QStringLiteral("fdxloadfilter"));
}

PreferencesElement profiles() {
    return root().child_or_new(QStringLiteral("Profiles"));
}

QString flag_name(const QString& link) {
    return QStringLiteral("Tag") + link;
}

// One look at all elements: with hundreds of tags a search for each would take seconds.
QHash<QString, PreferencesElement> elements_by_tag(const PreferencesElement& parent) {
    QHash<QString, PreferencesElement> elements;
    for (const PreferencesElement& element : parent.children())
        if (!elements.contains(element.tag()))
            elements.insert(element.tag(), element);
    return elements;
}

double now() {
    const QDateTime moment = QDateTime::currentDateTime();
    return day_number(moment.date(), moment.time());
}

double six_months_ago() {
    const QDateTime moment = QDateTime::currentDateTime();
    return day_number(moment.date().addMonths(-6), moment.time());
}

double stored_day(const QString& element, double (*otherwise)()) {
    const double stored = numeric_value(root().child_text(element));
    return stored < kFirstStoredDay ? otherwise() : stored;
}

} // namespace

void frmMain::save_filter() {
    trapped("frmMain", "save_filter", [&] {
        PreferencesElement top = root();
        top.set_child_text(QStringLiteral("chkDates"), QString::number(int{chkDates->isChecked()}));
        top.set_child_text(QStringLiteral("dtFrom"), day_number_text(dtFrom->value()));
        top.set_child_text(QStringLiteral("dtTo"), day_number_text(dtTo->value()));
        PreferencesElement flags = saved_flags();
        auto known = elements_by_tag(flags);
        const QStringList links = chosen_links();
        const QSet<QString> chosen(links.begin(), links.end());
        for (int i = 0; i < cmbTags->item_count(); ++i) {
            const QString link = cmbTags->item(i).code;
            PreferencesElement& flag = known[flag_name(link)];
            if (flag.is_null())
                flag = flags.append_child(flag_name(link));
            flag.set_text(chosen.contains(link) ? QStringLiteral("1") : QStringLiteral("0"));
        }
    });
}

void frmMain::load_filter() {
    trapped("frmMain", "load_filter", [&] {
        // The first query comes when the whole filter is back.
        const QSignalBlocker quiet_check(chkDates);
        const QSignalBlocker quiet_from(dtFrom);
        const QSignalBlocker quiet_to(dtTo);
        chkDates->setChecked(numeric_value(root().child_text(QStringLiteral("chkDates"))) == 1);
        dtFrom->set_value(stored_day(QStringLiteral("dtFrom"), six_months_ago));
        dtTo->set_value(stored_day(QStringLiteral("dtTo"), now));
        const auto known = elements_by_tag(saved_flags());
        for (int i = 0; i < cmbTags->item_count(); ++i) {
            const TagCombo::Item& tag = cmbTags->item(i);
            if (known.value(flag_name(tag.code)).text() == QLatin1String("1"))
                add_chosen_tag(tag.description, tag.code);
        }
        mark_chosen_tags();
    });
}

void frmMain::profile_save() {
    trapped("frmMain", "profile_save", [&] {
        PreferencesElement all = profiles();
        const QString name = input_box(QStringLiteral("Enter a user friendly profile name."),
                                       QStringLiteral("Create new profile"));
        if (name.isEmpty())
            return;
        PreferencesElement profile =
            all.append_child(QStringLiteral("profile") + QString::number(getNewLink({})));
        profile.set_attribute(QStringLiteral("name"), name);
        for (const QString& link : chosen_links())
            profile.append_child(QStringLiteral("tag") + link);
        save_localXML();
    });
}

void frmMain::mnu_profiles() {
    trapped("frmMain", "mnu_profiles", [&] {
        const QList<PreferencesElement> saved = profiles().children();
        const auto add_each = [&](const QString& key) {
            for (const PreferencesElement& profile : saved)
                add_grey_item(*Dmnu, profile.attribute(QStringLiteral("name")),
                              key + profile.tag().remove(QStringLiteral("profile")));
        };
        constexpr int kAlways = 3;
        constexpr int kWithProfiles = 3;
        const int count = static_cast<int>(saved.size());
        pop_count = kAlways + (count > 0 ? kWithProfiles + 2 * count : 0);
        p_popMenu(*Dmnu);
        add_grey_item(*Dmnu, QStringLiteral("Add All Tags"), QStringLiteral("mnuProfileAdd"));
        add_menu_separator(*Dmnu);
        if (count > 0) {
            add_grey_item(*Dmnu, QStringLiteral("Open Profile"), QStringLiteral("mnuProfileOpen"));
            add_each(QStringLiteral("mnuProfileOpen"));
        }
        add_grey_item(*Dmnu, QStringLiteral("Save as new profile"),
                      QStringLiteral("mnuProfileSave"));
        if (count > 0) {
            add_menu_separator(*Dmnu);
            add_grey_item(*Dmnu, QStringLiteral("Delete Profile"),
                          QStringLiteral("mnuProfileDelete"));
            add_each(QStringLiteral("mnuProfileDelete"));
        }
        Dmnu->show_under(toolbar_button(QStringLiteral("Maintenance")));
    });
}

// Kept as entry points by name: this release saves and lists profiles and applies none.
void frmMain::load_profile() {
    trapped("frmMain", "load_profile", [] {});
}

void frmMain::save_profile() {
    trapped("frmMain", "save_profile", [] {});
}

} // namespace folidex
