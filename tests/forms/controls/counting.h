// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QModelIndex>
#include <QStyleOptionViewItem>

namespace folidex::test {

/// Counts how often an item is measured or painted: what takes longer the more items there are.
template <class Delegate> class CountingDelegate : public Delegate {
public:
    CountingDelegate() : Delegate(nullptr) {}
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        ++count;
        return Delegate::sizeHint(option, index);
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        ++count;
        Delegate::paint(painter, option, index);
    }
    mutable int count = 0;
};

} // namespace folidex::test
