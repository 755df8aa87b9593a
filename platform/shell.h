// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <optional>

class QWidget;

namespace folidex {

/// What the desktop does for the program; one source per system.

/// The shell's folder number 35: the application data of all users of the machine.
inline constexpr int kCommonAppData = 35;

/// The full path of a shell folder by its number; empty when it cannot be found.
QString shell_folder(int folder_id);
/// The folder that holds the running program; dbm.mdb lies there.
QString program_folder();
/// Opens a file or a web address with its associated program, without waiting. A desktop
/// that refuses either tells the user itself or makes this throw Error.
void open_with_desktop(const QString& target);
/// Shows a file, selected, in the file manager, without waiting; its folder when that is all
/// that the desktop can do.
void show_in_file_manager(const QString& path);
/// The system's folder picker; nothing when cancelled.
std::optional<QString> pick_folder(QWidget* owner, const QString& title);
/// The page of the product's site with a path such as "/help/index.html": a web address when
/// the build names a site, else the installed page as a file address.
QString site_page(const QString& path);

} // namespace folidex
