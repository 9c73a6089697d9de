#pragma once

#include <QDateTime>

namespace tarnovel {

/// Seconds, with fraction, since 2001-01-01 00:00:00 UTC: the form of dates in saved documents.
using SecondsSince2001 = double;

inline SecondsSince2001 secondsSince2001(const QDateTime &date)
{
    // 978,307,200 s lie between 1970-01-01 and 2001-01-01, both at 00:00 UTC.
    return static_cast<double>(date.toMSecsSinceEpoch()) / 1000.0 - 978'307'200.0;
}

} // namespace tarnovel
