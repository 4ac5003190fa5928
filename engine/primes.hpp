// The first 10000 prime numbers (2 to 104729), from which the scan of a training
// image draws its stride. Built at compile time by a sieve.
#pragma once

#include <array>
#include <cstddef>

namespace nuvo {

inline constexpr std::size_t kPrimeCount = 10000;
inline constexpr int kLargestPrime = 104729;

namespace detail {

constexpr std::array<int, kPrimeCount> sievePrimes() {
  std::array<bool, kLargestPrime + 1> composite{};
  std::array<int, kPrimeCount> primes{};
  std::size_t count = 0;
  for (int i = 2; i <= kLargestPrime; ++i) {
    if (composite[i]) continue;
    primes[count++] = i;
    for (long long m = static_cast<long long>(i) * i; m <= kLargestPrime; m += i)
      composite[static_cast<std::size_t>(m)] = true;
  }
  return primes;
}

}  // namespace detail

inline constexpr std::array<int, kPrimeCount> kPrimes = detail::sievePrimes();

static_assert(kPrimes[0] == 2 && kPrimes[kPrimeCount - 1] == kLargestPrime);

}  // namespace nuvo
