// The S-boxes as circuits of two-input gates, made from the published tables while this is compiled, and proved there
// on all 64 inputs.
//
// A wire is known by its truth table: 64 bits, one an input. To make a function, a wire is looked for that gives it,
// then one gate over two wires; else it is expanded over one input x, in one of three forms:
//
//     f = g ^ (d & x)      f = g ^ (d & ~x)      f = g ^ (d | x)
//
// In each, g alone decides on one side of x and is free on the other, where d makes up the difference: both are only
// made right where it matters, and so need fewer gates. Which input and which form each expansion takes is free too:
// the letters of kChoices. They were found by simulated annealing over this very builder (change, insert, remove or
// swap a letter; fewer gates are better). Other letters make longer circuits or do not compile; none makes a wrong one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "crypto/DESTables.h"

namespace tovr::sboxes {

inline constexpr int kInputs = 6;
inline constexpr int kOutputs = 4;
inline constexpr int kMostGates = 80;

// Wires are numbered: the inputs, the first of the six bits being 0; one that is always one; the gates in order.
inline constexpr int kOnes = kInputs;
inline constexpr int kFirstGate = kInputs + 1;

enum class GateKind : std::uint8_t { kAnd, kOr, kXor, kAndNot };  // kAndNot: the first and not the second

struct Gate {
  GateKind kind = GateKind::kAnd;
  std::uint8_t first = 0;
  std::uint8_t second = 0;
};

struct Circuit {
  Gate gates[kMostGates] = {};
  std::size_t size = 0;
  std::uint8_t outputs[kOutputs] = {};  // wires, the most significant bit first
};

// The output of an S-box whose six inputs make the number `v`.
constexpr unsigned substitute(std::size_t box, unsigned v) {
  return destables::kSBoxes[box][(v >> 4 & 2) | (v & 1)][v >> 1 & 15];
}

// Bit v of a truth table: what input or output `index` is for the inputs v.
constexpr std::uint64_t inputTable(int index) {
  std::uint64_t table = 0;
  for (unsigned v = 0; v < 64; ++v) table |= std::uint64_t{v >> (kInputs - 1 - index) & 1} << v;
  return table;
}

constexpr std::uint64_t outputTable(std::size_t box, int index) {
  std::uint64_t table = 0;
  for (unsigned v = 0; v < 64; ++v) table |= std::uint64_t{substitute(box, v) >> (kOutputs - 1 - index) & 1} << v;
  return table;
}

constexpr std::uint64_t apply(GateKind kind, std::uint64_t a, std::uint64_t b) {
  if (kind == GateKind::kAnd) return a & b;
  if (kind == GateKind::kOr) return a | b;
  return kind == GateKind::kXor ? a ^ b : a & ~b;
}

class Builder {
 public:
  // `choices`: first in which order the outputs are made, then a letter for every expansion.
  constexpr Builder(std::size_t box, const char* choices) : next_(choices) {
    for (int i = 0; i < kInputs; ++i) tables_[i] = inputTable(i);
    tables_[kOnes] = ~std::uint64_t{0};
    const int order = *next_++ - 'a';  // twice the output to begin with, plus one where they go down
    for (int i = 0; i < kOutputs; ++i) {
      const int output = (order / 2 + (order % 2 == 0 ? i : kOutputs - i)) % kOutputs;
      circuit_.outputs[output] = static_cast<std::uint8_t>(make(outputTable(box, output), ~std::uint64_t{0}));
    }
  }
  constexpr const Circuit& circuit() const { return circuit_; }

 private:
  constexpr int wires() const { return kFirstGate + static_cast<int>(circuit_.size); }

  constexpr int add(GateKind kind, int a, int b) {
    tables_[wires()] = apply(kind, tables_[a], tables_[b]);
    circuit_.gates[circuit_.size++] = {kind, static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b)};
    return wires() - 1;
  }

  // A wire that is as `wanted` where `matters` has ones.
  constexpr int make(std::uint64_t wanted, std::uint64_t matters) {
    for (int a = 0; a < wires(); ++a) {
      if (((tables_[a] ^ wanted) & matters) == 0) return a;
    }
    for (int a = 1; a < wires(); ++a) {
      const std::uint64_t other = (tables_[a] ^ wanted) & matters;
      for (int b = 0; b < a; ++b) {
        if ((tables_[b] & matters) == other) return add(GateKind::kXor, a, b);
      }
    }
    for (int a = 1; a < wires(); ++a) {
      const std::uint64_t t = tables_[a];
      const bool coversOnes = (wanted & matters & ~t) == 0;
      if (!coversOnes && (wanted & matters & t) != 0 && (~wanted & matters & t) != 0) continue;  // serves no gate
      for (int b = 0; b < a; ++b) {
        const std::uint64_t u = tables_[b];
        if ((((t & u) ^ wanted) & matters) == 0) return add(GateKind::kAnd, a, b);
        if ((((t | u) ^ wanted) & matters) == 0) return add(GateKind::kOr, a, b);
        if ((((t & ~u) ^ wanted) & matters) == 0) return add(GateKind::kAndNot, a, b);
        if ((((u & ~t) ^ wanted) & matters) == 0) return add(GateKind::kAndNot, b, a);
      }
    }
    return expand(wanted, matters);
  }

  constexpr int expand(std::uint64_t wanted, std::uint64_t matters) {
    const int choice = *next_++ - 'a';
    const int x = choice / 3;
    const int form = choice % 3;
    const std::uint64_t decides = form == 0 ? ~tables_[x] : tables_[x];  // where g does alone
    const int g = make(form == 2 ? ~wanted : wanted, matters & decides);
    const int d = make(wanted ^ tables_[g], matters & ~decides);
    constexpr GateKind kForms[] = {GateKind::kAnd, GateKind::kAndNot, GateKind::kOr};
    return add(GateKind::kXor, g, add(kForms[form], d, x));
  }

  std::uint64_t tables_[kFirstGate + kMostGates] = {};
  Circuit circuit_;
  const char* next_;
};

inline constexpr const char* kChoices[8] = {
    "enfqgjikqbjofbqrkcorcpmgpg",  // S1: 65 gates
    "aadphipefrikmckoabhaor",      // S2: 58 gates
    "glnrbfplrgopnjppqelohor",     // S3: 59 gates
    "fqohcbekfoircdgepp",          // S4: 45 gates
    "ccfnikjrcemelhrfbjffgmch",    // S5: 63 gates
    "gpkbiniboragnkmkacknpq",      // S6: 57 gates
    "badhqnfpgpheoidhbcjobpdq",    // S7: 61 gates
    "epjimedchlpijkarkbrfh",       // S8: 55 gates
};

template <std::size_t Box>
inline constexpr Circuit kCircuit = Builder(Box, kChoices[Box]).circuit();

// Runs a circuit on all 64 inputs at once and compares what comes out with the published table.
constexpr bool isSBox(const Circuit& circuit, std::size_t box) {
  std::uint64_t wires[kFirstGate + kMostGates] = {};
  for (int i = 0; i < kInputs; ++i) wires[i] = inputTable(i);
  wires[kOnes] = ~std::uint64_t{0};
  for (std::size_t i = 0; i < circuit.size; ++i) {
    const Gate gate = circuit.gates[i];
    wires[kFirstGate + i] = apply(gate.kind, wires[gate.first], wires[gate.second]);
  }
  for (int i = 0; i < kOutputs; ++i) {
    if (wires[circuit.outputs[i]] != outputTable(box, i)) return false;
  }
  return true;
}

static_assert(isSBox(kCircuit<0>, 0) && isSBox(kCircuit<1>, 1) && isSBox(kCircuit<2>, 2) && isSBox(kCircuit<3>, 3));
static_assert(isSBox(kCircuit<4>, 4) && isSBox(kCircuit<5>, 5) && isSBox(kCircuit<6>, 6) && isSBox(kCircuit<7>, 7));

}  // namespace tovr::sboxes
