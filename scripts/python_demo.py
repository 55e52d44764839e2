"""numpy/scipy linear algebra on whatever BLAS/LAPACK the process found: the calls of the demo, their
results saved for comparison and their times, or scipy.linalg's own test suite.

    python_demo.py run OUT.npz N ROUNDS      the calls at order N, best time of ROUNDS each
    python_demo.py served                    which library serves dgemm_, dgesv_, cblas_dgemm
    python_demo.py compare BASE.npz ZOR.npz LABEL   results agree? times and ratios (exit 1 if not)

Run by scripts/python-demo.sh once per library setting (LD_LIBRARY_PATH, LD_PRELOAD)."""

import ctypes
import sys
import time

import numpy as np
import scipy.linalg as la


def matrices(n):
    rng = np.random.default_rng(7)
    a = rng.standard_normal((n, n))
    spd = a @ a.T / n + np.eye(n)
    tall = rng.standard_normal((2 * n, n))
    b = rng.standard_normal((n, 4))
    return a, spd, tall, b


def calls(n):
    a, spd, tall, b = matrices(n)
    rng = np.random.default_rng(8)
    bb = rng.standard_normal((n, n))
    return {
        "solve": lambda: la.solve(a, b),
        "cholesky": lambda: la.cholesky(spd, lower=True),
        "lstsq": lambda: la.lstsq(tall, tall[:, :3] + 0.1, lapack_driver="gelsd")[0],
        "eigh": lambda: la.eigh(spd, driver="evd"),
        "svd": lambda: la.svd(a, lapack_driver="gesdd"),
        "eig": lambda: la.eig(a),
        "schur": lambda: la.schur(a),
        "qz": lambda: la.qz(a, bb),
    }


# What a call's result is judged by: quantities that do not depend on sign or phase choices.
def invariants(name, result, n):
    a, spd, tall, b = matrices(n)
    if name in ("solve", "cholesky", "lstsq"):
        return np.asarray(result)
    if name == "eigh":
        w, v = result
        return np.concatenate([w, [np.linalg.norm(spd @ v - v * w) / np.linalg.norm(spd)]])
    if name == "svd":
        u, s, vt = result
        return np.concatenate([s, [np.linalg.norm(a - (u * s) @ vt) / np.linalg.norm(a)]])
    if name == "eig":
        w, v = result
        w = np.sort_complex(w)
        return np.concatenate([w.real, w.imag])
    if name == "schur":
        t, z = result
        d = np.sort(np.linalg.eigvals(t).real)
        return np.concatenate([d, [np.linalg.norm(a - z @ t @ z.T) / np.linalg.norm(a)]])
    if name == "qz":
        aa, bq, q, z = result
        return np.array([np.linalg.norm(a - q @ aa @ z.T) / np.linalg.norm(a)])
    raise KeyError(name)


def run(out, n, rounds):
    results, times = {}, {}
    for name, call in calls(n).items():
        best = float("inf")
        for _ in range(rounds):
            start = time.perf_counter()
            value = call()
            best = min(best, time.perf_counter() - start)
        results[name] = invariants(name, value, n)
        times[name] = best
    np.savez(out, **{"r_" + k: v for k, v in results.items()}, **{"t_" + k: np.array(v) for k, v in times.items()})


def served():
    """The file each of a few entry points resolves to in this process."""
    la.solve(np.eye(2), np.ones(2))  # loads scipy's LAPACK wrappers and with them the libraries
    maps = []
    with open("/proc/self/maps") as f:
        for line in f:
            fields = line.split()
            if len(fields) >= 6:
                lo, hi = (int(x, 16) for x in fields[0].split("-"))
                maps.append((lo, hi, fields[5]))
    # numpy and scipy load the system libraries privately: a name not in the global scope is looked
    # up in the BLAS/LAPACK files the process mapped, as their wrappers resolve it.
    libraries = sorted({path for _, _, path in maps if "blas" in path or "lapack" in path})
    scopes = [ctypes.CDLL(None)] + [ctypes.CDLL(path) for path in libraries]
    for symbol in ("cblas_dgemm", "dgemm_", "dgesv_", "dsyevd_"):
        address = None
        for scope in scopes:
            try:
                address = ctypes.cast(getattr(scope, symbol), ctypes.c_void_p).value
                break
            except AttributeError:
                continue
        if address is None:
            print(f"{symbol}: not loaded")
            continue
        where = next((path for lo, hi, path in maps if lo <= address < hi), "?")
        print(f"{symbol}: {where}")


def compare(base_file, zor_file, label):
    base, zor = np.load(base_file), np.load(zor_file)
    ok = True
    print(f"{'call':10} {label + ' s':>12} {'zor s':>10} {'ratio':>7}  agreement")
    for name in calls(2):
        rb, rz = base["r_" + name], zor["r_" + name]
        difference = np.max(np.abs(rb - rz)) / max(1.0, np.max(np.abs(rb)))
        agree = difference < 1e-8
        ok = ok and agree
        tb, tz = float(base["t_" + name]), float(zor["t_" + name])
        print(f"{name:10} {tb:12.4f} {tz:10.4f} {tb / tz:7.2f}  {'yes' if agree else 'NO'} ({difference:.1e})")
    return ok


if __name__ == "__main__":
    if sys.argv[1] == "run":
        run(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
    elif sys.argv[1] == "served":
        served()
    elif sys.argv[1] == "compare":
        sys.exit(0 if compare(sys.argv[2], sys.argv[3], sys.argv[4]) else 1)
