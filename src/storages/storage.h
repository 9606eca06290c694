#pragma once

namespace Quillon {

// The root of all storages: something outside the program that holds data.
class Storage {
public:
    virtual ~Storage() = default;
};

}  // namespace Quillon
