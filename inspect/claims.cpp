// SPDX-License-Identifier: MIT
#include "inspect/claims.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

namespace inspect {

Claims::Claims(const Package& package, const Visit& visit) : package_(package), held_(package.block_count()) {
    WalkAll(visit, {});
    if (!shares_.empty()) FindOwners();
}

void Claims::WalkAll(const Visit& visit, const Step& step) {
    const auto see = [&](const Claim& claim, const Entry& entry) {
        if (visit) visit(claim, entry);
    };
    see(WalkOwn(kHeaderOwner, package_.header(), step), {});
    see(WalkOwn(kDirectoryOwner, package_.directory(), step), {});
    package_.ForEachEntry([&](const Entry& entry) {
        if (entry.used()) see(WalkFile(entry, step), entry);
    });
}

/// Takes a block for a chain. False when it has an owner already.
bool Claims::Take(Claim& claim, std::int32_t block) {
    if (held_.Has(block)) {
        shares_.push_back({block, 0, claim.owner, 0, claim.length});
        claim.end = ChainEnd::again;
        claim.end_block = block;
        return false;
    }
    held_.Add(block);
    if (!package_.map().Used(block) && claim.looks_free < 0) claim.looks_free = block;
    ++claim.length;
    return true;
}

Claim Claims::WalkOwn(int owner, const OwnChain& chain, const Step& step) {
    Claim claim{.owner = owner, .needed = static_cast<std::int64_t>(chain.blocks.size()), .end = chain.end};
    for (const std::int32_t block : chain.blocks) {
        if (block < 0) continue;
        if (step) step(owner, block, claim.length);
        if (!Take(claim, block)) break;
    }
    if (claim.end != ChainEnd::last && claim.end_block < 0 && !chain.blocks.empty())
        claim.end_block = package_.map().Next(chain.blocks.back());
    return claim;
}

Claim Claims::WalkFile(const Entry& entry, const Step& step) {
    const BlockMap& map = package_.map();
    Claim claim{.owner = entry.index, .needed = entry.blocks()};
    if (entry.first_block == 0) return claim;
    std::int32_t block = entry.start();
    do {
        if (!map.Inside(block)) {
            claim.end = ChainEnd::outside;
            claim.end_block = block;
            return claim;
        }
        claim.torn = claim.length >= claim.needed && !map.Used(block);
        if (claim.torn) return claim;
        if (step) step(entry.index, block, claim.length);
        if (!Take(claim, block)) return claim;
        block = map.Next(block);
    } while (block >= 0);
    return claim;
}

/// Walks everything once more, now that it is known which blocks are of interest. Whoever holds a block was walked
/// before the chain that ran into it, so that chain's whole length is known by then.
void Claims::FindOwners() {
    std::vector<Share> wanted = std::move(shares_);
    std::unordered_map<std::int32_t, std::pair<int, std::int64_t>> owners;
    for (const Share& share : wanted) owners.emplace(share.block, std::pair(0, std::int64_t{-1}));
    std::unordered_map<int, std::int64_t> lengths;  // of chains that hold such a block
    bool holds_one = false;
    held_ = BlockSet(package_.block_count());
    shares_.clear();
    const auto step = [&](int owner, std::int32_t block, std::int64_t position) {
        const auto found = owners.find(block);
        if (found == owners.end() || found->second.second >= 0) return;
        found->second = {owner, position};
        holds_one = true;
    };
    const auto see = [&](const Claim& claim, const Entry&) {
        if (holds_one) lengths[claim.owner] = claim.length;
        holds_one = false;
    };
    WalkAll(see, step);
    for (Share& share : wanted) {
        std::tie(share.owner, share.position) = owners[share.block];
        const bool loops = share.owner == share.other || lengths[share.owner] >= kEndless;
        const std::int64_t rest = share.owner < 0 ? 0 : lengths[share.owner] - share.position;
        share.other_length = loops ? kEndless : share.other_position + rest;
        const auto other = lengths.find(share.other);
        if (other != lengths.end()) other->second = share.other_length;
    }
    shares_ = std::move(wanted);
}

const Share* Claims::ShareOf(int other) const {
    const auto found = std::lower_bound(shares_.begin(), shares_.end(), other,
                                        [](const Share& share, int wanted) { return share.other < wanted; });
    return found != shares_.end() && found->other == other ? &*found : nullptr;
}

namespace {

/// For each owner, the first of its blocks that is shared, and with whom.
using FirstShares = std::map<int, std::pair<std::int64_t, int>>;

FirstShares FirstSharesOf(const Claims& claims) {
    FirstShares first;
    const auto note = [&](int owner, std::int64_t position, int other) {
        const auto [found, is_new] = first.try_emplace(owner, position, other);
        if (!is_new && position < found->second.first) found->second = {position, other};
    };
    for (const Share& share : claims.shares()) {
        note(share.owner, share.position, share.other);
        note(share.other, share.other_position, share.owner);
    }
    return first;
}

void Describe(const Claim& claim, const Share* share, FileState& state) {
    const std::int64_t blocks = std::min(share ? share->other_length : claim.length, claim.needed);
    state.bytes = std::clamp<std::int64_t>(state.entry.size, 0, blocks * kBlock);
    state.looks_free = claim.looks_free >= 0;
    state.wrong_end = claim.end != ChainEnd::last || claim.length > claim.needed;
}

}  // namespace

void ForEachFile(const Package& package, const std::function<void(const FileState&)>& visit) {
    std::vector<Claim> odd;  // walks that did not end as they should, in the order of the entries
    const Claims claims(package, [&](const Claim& claim, const Entry&) {
        const bool sound = claim.end == ChainEnd::last && claim.looks_free < 0 && claim.length == claim.needed;
        if (claim.owner >= 0 && !sound) odd.push_back(claim);
    });
    const FirstShares shares = FirstSharesOf(claims);
    auto next_odd = odd.begin();
    package.ForEachEntry([&](const Entry& entry) {
        if (!entry.used()) return;
        FileState state{.entry = entry};
        state.bytes = std::max<std::int64_t>(entry.size, 0);
        if (next_odd != odd.end() && next_odd->owner == entry.index) {
            Describe(*next_odd, claims.ShareOf(entry.index), state);
            ++next_odd;
        }
        const auto share = shares.find(entry.index);
        if (share != shares.end() && share->second.first < entry.blocks()) {
            state.shared = true;
            state.shared_with = share->second.second;
        }
        visit(state);
    });
}

}  // namespace inspect
