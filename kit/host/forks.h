// The services that this process has open, which are told of its forks.
#pragma once

namespace koriil
{

class Service;

// May throw std::bad_alloc.
void addToForks(Service& service);
void removeFromForks(const Service& service);

} // namespace koriil
