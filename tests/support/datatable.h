#pragma once

#include <QtTest>

// A data table's columns, typed and named in order: addColumns<int, QString>({"count", "name"}).
template <typename... Types>
void addColumns(const char* const (&names)[sizeof...(Types)])
{
    const char* const* name = names;
    (QTest::addColumn<Types>(*name++), ...);
}
