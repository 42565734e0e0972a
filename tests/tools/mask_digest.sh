#!/usr/bin/env bash
# Fails unless the mask that the program exports has the digest of the one that other makers of it
# get: mask_digest.sh PELKRAFT
set -euo pipefail
digest=dc5b78dc32cd5e0fe4ba03b82cfee57b02315fda9aefc459d0e8a44ac890026b
"$1" mask --export raw16 - | sha256sum --check <(echo "$digest  -")
