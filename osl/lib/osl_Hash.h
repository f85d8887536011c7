// Hashes of whole numbers, and numbers from hashes.
//
// The mixing is Bob Jenkins' lookup3 (public domain, 2006) over one to five
// words; every noise of the language that is not a simplex noise draws on it,
// so its values are fixed for ever.
#pragma once

#include <cstdint>
#include <string_view>

uint32_t osl_hash(uint32_t a);
uint32_t osl_hash(uint32_t a, uint32_t b);
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c);
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c, uint32_t d);
uint32_t osl_hash(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e);

// The language's hash() of one to four floats: of their bits, so that 0 and -0 differ.
int osl_hashOf(const float *x, int count);

// The language's hash() of a text: the low 32 bits of FarmHash's 64-bit fingerprint
// (Pike, 2014); 0 for the empty text.
int osl_hashOf(std::string_view text);
