// SPDX-License-Identifier: MIT
// A double-byte character set for the length of a scope: code page 936, or a GBK locale where one is installed.
#pragma once

class DoubleByteScope {
public:
    DoubleByteScope();
    ~DoubleByteScope();
    DoubleByteScope(const DoubleByteScope&) = delete;
    DoubleByteScope& operator=(const DoubleByteScope&) = delete;

    /// False where there is no such character set.
    bool entered() const { return entered_; }

private:
    bool entered_;
};
