#!/usr/bin/python3
"""Writes demo.db, the sales database of the demo reports. Deterministic: the same file every run."""
import os
import random
import sqlite3
import sys

REGIONS = {"North": "Ada Brown", "South": "Ben Clark", "East": "Cleo Diaz", "West": "Dan Evans"}
PRODUCTS = {"Widget": 12.50, "Gadget": 30.00, "Gizmo": 7.25, "Doohickey": 55.00, "Sprocket": 3.10}
CUSTOMERS = ["Acme Ltd", "Bolt & Nut", "Crane's Hardware", "Delta; Sons", "Echo Trading", "Fox \"Retail\""]
ROWS = 3000


def main(path):
    if os.path.exists(path):
        os.remove(path)
    rng = random.Random(20240101)
    db = sqlite3.connect(path)
    db.execute("CREATE TABLE regions (region TEXT PRIMARY KEY, manager TEXT NOT NULL)")
    db.execute("CREATE TABLE sales (id INTEGER PRIMARY KEY, order_date DATE NOT NULL, region TEXT NOT NULL,"
               " product TEXT NOT NULL, customer TEXT NOT NULL, quantity INTEGER NOT NULL,"
               " unit_price DOUBLE NOT NULL, amount DOUBLE NOT NULL, paid BOOLEAN NOT NULL)")
    db.executemany("INSERT INTO regions VALUES (?, ?)", sorted(REGIONS.items()))
    for i in range(1, ROWS + 1):
        day = 1 + (i * 7) % 365
        month, mday = divmod(day - 1, 31)
        date = "2024-%02d-%02d" % (min(month + 1, 12), min(mday + 1, 28))
        region = rng.choice(sorted(REGIONS))
        product = rng.choice(sorted(PRODUCTS))
        quantity = rng.randint(1, 40)
        price = PRODUCTS[product]
        db.execute("INSERT INTO sales VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   (i, date, region, product, rng.choice(CUSTOMERS), quantity, price,
                    round(quantity * price, 2), rng.random() < 0.8))
    db.commit()
    db.execute("VACUUM")
    db.close()


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "demo.db"))
