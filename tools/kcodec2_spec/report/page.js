// The filter of the page, and how many rows it leaves. Without a script the page has all rows, and
// "Only differences" still works: the style does that.
"use strict";
(() => {
    const filter = document.getElementById("filter");
    const only = document.getElementById("only");
    const shown = document.getElementById("shown");
    const sections = [...document.querySelectorAll(".matrix tbody")].map((body) => ({
        body,
        rows: [...body.querySelectorAll(".row")].map((row) => ({
            row,
            text: row.textContent.toLowerCase(),
            isSame: row.classList.contains("same"),
        })),
    }));

    function apply() {
        const words = filter.value.toLowerCase().split(/\s+/);
        let left = 0;
        let all = 0;
        for (const {body, rows} of sections) {
            let leftHere = 0;
            for (const {row, text, isSame} of rows) {
                row.hidden = !words.every((word) => text.includes(word));
                leftHere += !row.hidden && !(only.checked && isSame) ? 1 : 0;
            }
            body.hidden = rows.length !== 0 && leftHere === 0;
            left += leftHere;
            all += rows.length;
        }
        shown.textContent = `${left} of ${all} rows`;
    }

    filter.addEventListener("input", apply);
    only.addEventListener("change", apply);
    document.querySelector(".controls").addEventListener("submit", (event) => {
        event.preventDefault();
    });
    for (const part of document.querySelectorAll(".scripted")) {
        part.hidden = false;
    }
    apply();
})();
