// What a script adds to the page: a filter, another column to compare with, both kept in the address,
// and one tab stop for each table. Without a script the page has all rows and lists, compares with the
// first column, and "Only differences" still works: the style does that.
"use strict";
(() => {
    const filter = document.getElementById("filter");
    const only = document.getElementById("only");
    const baseline = document.getElementById("baseline");
    const shown = document.getElementById("shown");
    const heads = [...document.querySelectorAll(".matrix thead th")].slice(1);
    const loads = [...document.querySelectorAll(".loads tbody tr")];
    const counted = (count, what) => `${count} ${what}${count === 1 ? "" : "s"}`;
    const sections = [...document.querySelectorAll(".matrix tbody")].map((body) => ({
        body,
        isList: body.classList.contains("list"),
        count: body.querySelector(".count"),
        meanings: [...body.querySelectorAll(".meaning")],
        rows: [...body.querySelectorAll(".row:not(.meaning)")].map((row) => ({
            row,
            text: row.textContent.toLowerCase(),
            name: row.cells[0].firstChild.textContent,
        })),
        leftOut: [...body.querySelectorAll(".left-out")].reduce(
            (sum, row) => sum + parseInt(row.textContent, 10), 0),
    }));

    // --- The filter ---

    function applyFilter() {
        const words = filter.value.toLowerCase().split(/\s+/);
        const isFiltered = filter.value.trim() !== "";
        let left = 0;
        let all = 0;
        for (const {body, meanings, rows, leftOut} of sections) {
            let leftHere = 0;
            for (const {row, text} of rows) {
                row.hidden = !words.every((word) => text.includes(word));
                const isSame = only.checked && row.classList.contains("same");
                leftHere += row.hidden || isSame ? 0 : 1;
            }
            for (const meaning of meanings) {
                meaning.hidden = isFiltered;
            }
            body.hidden = leftHere === 0 && (rows.length !== 0 || isFiltered);
            left += leftHere;
            all += rows.length + leftOut;
        }
        shown.textContent = `${left} of ${counted(all, "row")}`;
    }

    // --- The column to compare with: the same comparison as the tool's ---

    // The entries of a column, in its order.
    function entriesOf(section, column) {
        const entries = [];
        for (const {row, name} of section.rows) {
            const value = row.cells[column + 1].querySelector("b");
            if (value) {
                const place = section.isList ? parseInt(value.textContent.slice(1), 10) : 0;
                const text = section.isList ? value.textContent.replace(/^#\d+/, "")
                                            : value.textContent;
                entries.push({row, place, text: `${name}\n${text}`});
            }
        }
        return section.isList ? entries.sort((a, b) => a.place - b.place) : entries;
    }

    function differencesByName(before, after) {
        const rows = new Set();
        const values = new Map(before.map(({row, text}) => [row, text]));
        for (const {row, text} of after) {
            if (values.get(row) !== text) {
                rows.add(row);
            }
            values.delete(row);
        }
        return new Set([...rows, ...values.keys()]);
    }

    // The fewest entries that are removed and added; all of them where that takes too long to find.
    function differencesInOrder(before, after) {
        let start = 0;
        let limitA = before.length;
        let limitB = after.length;
        const isSame = (i, j) => before[i].text === after[j].text;
        while (start < Math.min(limitA, limitB) && isSame(start, start)) {
            ++start;
        }
        while (limitA > start && limitB > start && isSame(limitA - 1, limitB - 1)) {
            --limitA;
            --limitB;
        }
        const width = limitB - start + 1;
        const height = limitA - start + 1;
        const isShort = width > 1 && height > 1 && height <= 4000000 / width;
        const common = isShort ? new Uint32Array(width * height) : null;
        const at = (i, j) => (i - start) * width + (j - start);
        for (let i = limitA - 1; isShort && i >= start; --i) {
            for (let j = limitB - 1; j >= start; --j) {
                common[at(i, j)] = isSame(i, j) ? common[at(i + 1, j + 1)] + 1
                    : Math.max(common[at(i + 1, j)], common[at(i, j + 1)]);
            }
        }
        const rows = new Set();
        for (let i = start, j = start; i < limitA || j < limitB;) {
            if (isShort && i < limitA && j < limitB && isSame(i, j)) {
                ++i;
                ++j;
            } else if (i < limitA
                       && (j === limitB || !isShort || common[at(i + 1, j)] >= common[at(i, j + 1)])) {
                rows.add(before[i++].row);
            } else {
                rows.add(after[j++].row);
            }
        }
        return rows;
    }

    function compareWith(chosen) {
        const sums = heads.map(() => 0);
        let all = 0;
        for (const section of sections) {
            const first = entriesOf(section, chosen);
            const differing = heads.map((head, column) => column === chosen ? new Set()
                : (section.isList ? differencesInOrder : differencesByName)(
                    first, entriesOf(section, column)));
            let count = 0;
            for (const {row} of section.rows) {
                let isDifferent = false;
                heads.forEach((head, column) => {
                    const isHere = differing[column].has(row);
                    row.cells[column + 1].classList.toggle("differs", isHere);
                    sums[column] += isHere ? 1 : 0;
                    isDifferent = isDifferent || isHere;
                });
                row.classList.toggle("same", !isDifferent);
                count += isDifferent ? 1 : 0;
            }
            section.body.classList.toggle("same", count === 0);
            section.count.textContent = count === 0 ? "" : `, ${count} differ`;
            all += count;
        }
        document.getElementById("differing").textContent = all;
        heads.forEach((head, column) => {
            head.classList.toggle("baseline", column === chosen);
            loads[column].lastElementChild.textContent = column === chosen ? "–" : sums[column];
        });
    }

    // --- The address ---

    function readAddress() {
        const values = new URLSearchParams(location.search);
        filter.value = values.get("filter") ?? "";
        only.checked = values.has("only");
        const options = [...baseline.options];
        const chosen = options.findIndex((option) => option.value === values.get("baseline"));
        baseline.selectedIndex = Math.max(chosen, 0);
    }

    function writeAddress() {
        const values = new URLSearchParams();
        if (filter.value.trim() !== "") {
            values.set("filter", filter.value);
        }
        if (only.checked) {
            values.set("only", "1");
        }
        if (baseline.selectedIndex !== 0) {
            values.set("baseline", baseline.value);
        }
        try {
            history.replaceState(null, "", `${location.pathname}?${values}${location.hash}`);
        } catch {
            // The browser keeps the address of such a page as it is.
        }
    }

    // --- The keyboard: Enter goes into a table, arrows to its next link, Escape out of it ---

    for (const region of document.querySelectorAll(".scroll")) {
        const links = [...region.querySelectorAll("a, summary")];
        for (const link of links) {
            link.tabIndex = -1;
        }
        if (links.length !== 0) {
            region.setAttribute("aria-description", "Enter goes to the links, Escape leaves them.");
        }
        region.addEventListener("keydown", (event) => {
            const isVisible = (link) => link.checkVisibility();
            const reachable = links.filter(isVisible);
            const index = reachable.indexOf(document.activeElement);
            const step = {ArrowDown: 1, ArrowRight: 1, ArrowUp: -1, ArrowLeft: -1}[event.key];
            let target = null;
            if (event.target === region && event.key === "Enter") {
                target = reachable[0];
            } else if (index >= 0 && event.key === "Escape") {
                target = region;
            } else if (index >= 0 && step) {
                target = reachable[index + step];
                event.preventDefault();
            }
            if (target) {
                event.preventDefault();
                target.focus();
            }
        });
    }

    // Long lists are open where there is no script, and on paper.
    const folded = [...document.querySelectorAll("details")];
    const setOpen = (isOpen) => folded.forEach((list) => { list.open = isOpen; });
    setOpen(false);
    window.addEventListener("beforeprint", () => setOpen(true));
    window.addEventListener("afterprint", () => setOpen(false));

    filter.addEventListener("input", () => { applyFilter(); writeAddress(); });
    only.addEventListener("change", () => { applyFilter(); writeAddress(); });
    baseline.addEventListener("change", () => {
        compareWith(baseline.selectedIndex);
        applyFilter();
        writeAddress();
    });
    document.querySelector(".controls").addEventListener("submit", (event) => {
        event.preventDefault();
    });
    for (const part of document.querySelectorAll(".scripted")) {
        part.hidden = false;
    }
    for (const part of document.querySelectorAll(".static")) {
        part.hidden = true;
    }
    readAddress();
    if (baseline.selectedIndex !== 0) {
        compareWith(baseline.selectedIndex);
    }
    applyFilter();
})();
